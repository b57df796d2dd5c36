// Running one batch command per project line, several lines at once: each line is a child run
// of this same program (its single-model command), so lines share nothing and a line that fails,
// or even crashes, fails alone.
//
//   std::vector<line_job> jobs{{1010, {"compute", "/survey/Line_1010.qvx", "-o", "x.csv"}}};
//   run_line_jobs(jobs, 2, [](const line_job& job, const line_job_result& r) {
//       std::cout << job.number << (r.exit_status == 0 ? " done\n" : " failed\n");
//   });
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace trensil::cli {

struct line_job {
    int number = 0;                 // the line number, for the report
    std::vector<std::string> args;  // the arguments after the program's name
};

struct line_job_result {
    int exit_status = 0;  // the command's exit status; 128 + signal when it was killed
    std::string out;      // what it wrote on standard output
    std::string err;      // and on standard error
};

// The number of processors, at least 1.
int processor_count();

// Runs the jobs, at most `parallel` at a time, in the order given; `done` is called for each as
// it finishes (in the order they finish), on the calling thread. A job that cannot be started
// is reported as failed with the reason in `err`.
void run_line_jobs(const std::vector<line_job>& jobs, int parallel,
                   const std::function<void(const line_job&, const line_job_result&)>& done);

}  // namespace trensil::cli
