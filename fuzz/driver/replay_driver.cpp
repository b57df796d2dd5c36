// Runs a fuzz target without libFuzzer: every file of the corpus folders given is fed to
// LLVMFuzzerTestOneInput, then, for --seconds N (default 0), random mutations of them (bytes
// flipped, inserted, deleted, spliced) with a fixed seed, so a run is repeatable.
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// The input being run, written to "fuzz-failure.bin" in the current directory when the target
// aborts or faults, so a failure found by mutation can be replayed.
const std::vector<std::uint8_t>* current_input = nullptr;

extern "C" void save_failing_input(int signal_number) {
    if (current_input) {
        const int fd = ::open("fuzz-failure.bin", O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (fd >= 0) {
            const ssize_t written = ::write(fd, current_input->data(), current_input->size());
            (void)written;
            ::close(fd);
        }
        const char note[] = "fuzz: failing input written to fuzz-failure.bin\n";
        const ssize_t shown = ::write(2, note, sizeof note - 1);
        (void)shown;
    }
    std::signal(signal_number, SIG_DFL);
    std::raise(signal_number);
}

std::vector<std::uint8_t> read_file(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void mutate(std::vector<std::uint8_t>& v, std::mt19937& rng,
            const std::vector<std::vector<std::uint8_t>>& corpus) {
    std::uniform_int_distribution<int> kind(0, 4);
    auto pos = [&](std::size_t n) {
        return n == 0 ? std::size_t{0} : std::uniform_int_distribution<std::size_t>(0, n - 1)(rng);
    };
    const char* interesting[] = {"0",  "-1", "1e309",        "nan",         "*",      ",",
                                 "\r", "\n", "\xEF\xBB\xBF", "99999999999", "-99999", " "};
    switch (kind(rng)) {
        case 0:
            if (!v.empty()) v[pos(v.size())] ^= static_cast<std::uint8_t>(1u << (rng() % 8));
            break;
        case 1:
            v.insert(v.begin() + static_cast<long>(pos(v.size() + 1)),
                     static_cast<std::uint8_t>(rng()));
            break;
        case 2:
            if (!v.empty()) v.erase(v.begin() + static_cast<long>(pos(v.size())));
            break;
        case 3: {
            const char* s = interesting[rng() % std::size(interesting)];
            v.insert(v.begin() + static_cast<long>(pos(v.size() + 1)), s, s + std::strlen(s));
            break;
        }
        default: {
            const auto& other = corpus[rng() % corpus.size()];
            if (other.empty()) break;
            const std::size_t from = pos(other.size());
            const std::size_t len = std::min<std::size_t>(other.size() - from, 64);
            v.insert(v.begin() + static_cast<long>(pos(v.size() + 1)),
                     other.begin() + static_cast<long>(from),
                     other.begin() + static_cast<long>(from + len));
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    double seconds = 0.0;
    std::vector<std::vector<std::uint8_t>> corpus;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--seconds") == 0 && i + 1 < argc) {
            seconds = std::atof(argv[++i]);
            continue;
        }
        const std::filesystem::path p(argv[i]);
        if (std::filesystem::is_directory(p)) {
            for (const auto& e : std::filesystem::directory_iterator(p))
                if (e.is_regular_file()) corpus.push_back(read_file(e.path()));
        } else if (std::filesystem::is_regular_file(p)) {
            corpus.push_back(read_file(p));
        }
    }
    if (corpus.empty()) corpus.emplace_back();
    std::signal(SIGABRT, save_failing_input);
    std::signal(SIGSEGV, save_failing_input);
    for (const auto& input : corpus) {
        current_input = &input;
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::mt19937 rng(12345);
    long runs = 0;
    const auto stop = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (std::chrono::steady_clock::now() < stop) {
        auto input = corpus[rng() % corpus.size()];
        const int steps = 1 + static_cast<int>(rng() % 8);
        for (int s = 0; s < steps; ++s) mutate(input, rng, corpus);
        current_input = &input;
        LLVMFuzzerTestOneInput(input.data(), input.size());
        ++runs;
    }
    std::printf("%zu corpus inputs, %ld mutated runs: no fault\n", corpus.size(), runs);
    return 0;
}
