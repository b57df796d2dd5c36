// The facet engine's block kernel four stations at a time, for processors with AVX2. Chosen at
// run time; on other processors it is never called.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#pragma GCC target("avx2")
// Products and sums stay separate roundings, as in the scalar path: no fused multiply-add.
#pragma GCC optimize("fp-contract=off")
#include <immintrin.h>

#include "response/facet_engine_block.h"

namespace trensil {

namespace {

typedef double lanes_vd __attribute__((vector_size(32)));
typedef std::int64_t lanes_vi __attribute__((vector_size(32)));

struct avx2_lanes : facet_lanes_base<lanes_vd, lanes_vi> {
    static vd sqrt(vd x) { return _mm256_sqrt_pd(x); }
    static bool any(vi mask) { return _mm256_movemask_pd(__m256d(mask)) != 0; }
};

}  // namespace

void facet_block_avx2(const facet_block_face& face, const double* x, const double* y,
                      const double* z, std::size_t count, const facet_block_terms& out) {
    facet_block_range<avx2_lanes>(face, x, y, z, count, out);
}

}  // namespace trensil
#endif
