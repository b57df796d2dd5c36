// The facet engine's block kernel eight stations at a time, for processors with AVX-512. Chosen at
// run time; on other processors it is never called.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#pragma GCC target("avx512f")
// Products and sums stay separate roundings, as in the scalar path: no fused multiply-add.
#pragma GCC optimize("fp-contract=off")
#include <immintrin.h>

#include "response/facet_engine_block.h"

namespace trensil {

namespace {

typedef double lanes_vd __attribute__((vector_size(64)));
typedef std::int64_t lanes_vi __attribute__((vector_size(64)));

struct avx512_lanes : facet_lanes_base<lanes_vd, lanes_vi> {
    // Every lane written (mask all ones); passing x as the pass-through keeps the compiler from
    // seeing an undefined vector.
    static vd sqrt(vd x) {
        return __builtin_ia32_sqrtpd512_mask(x, x, static_cast<__mmask8>(-1),
                                             _MM_FROUND_CUR_DIRECTION);
    }
    static bool any(vi mask) { return _mm512_test_epi64_mask(__m512i(mask), __m512i(mask)) != 0; }
};

}  // namespace

void facet_block_avx512(const facet_block_face& face, const double* x, const double* y,
                        const double* z, std::size_t count, const facet_block_terms& out) {
    facet_block_range<avx512_lanes>(face, x, y, z, count, out);
}

}  // namespace trensil
#endif
