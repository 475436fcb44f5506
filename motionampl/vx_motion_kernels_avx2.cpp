// Runs on processors with AVX2 only. Registers of 32 samples.
#include <immintrin.h>

#include <cstddef>
#include <cstdint>

#include "cpu/fetch_ahead.h"
#include "motionampl/vx_motion_kernels_isa.h"
#include "motionampl/vx_motion_loops.h"

namespace VLM_KPF {
namespace {

constexpr std::size_t kVector = 32;  // samples

__m256i load(const void* from) { return _mm256_loadu_si256(static_cast<const __m256i*>(from)); }

void store(unsigned char* to, __m256i samples) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), samples);
}

// --- Reference -----------------------------------------------------------------------------------

/// Eight quotients: (sum + 0.5) / window - 0.5, rounded to the nearest integer.
__m256i quotients(const std::uint32_t* sums, __m256 reciprocal, __m256 offset) {
  const __m256 sum = _mm256_cvtepi32_ps(load(sums));
  return _mm256_cvtps_epi32(_mm256_fmadd_ps(sum, reciprocal, offset));
}

/// Divides whole vectors. @return false when a quotient did not fit a byte.
bool divideVectors(const std::uint32_t* sums, std::uint32_t window, unsigned char* out,
                   std::size_t samples) {
  const __m256 reciprocal = _mm256_set1_ps(1.0F / static_cast<float>(window));
  const __m256 offset = _mm256_set1_ps(0.5F / static_cast<float>(window) - 0.5F);
  const __m256i inOrder = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  __m256i seen = _mm256_setzero_si256();
  for (std::size_t i = 0; i < samples; i += kVector) {
    CPU::fetchAhead(sums + i, kSumsAhead);
    CPU::fetchAhead(sums + i + 16, kSumsAhead);
    const __m256i low = _mm256_packs_epi32(quotients(sums + i, reciprocal, offset),
                                           quotients(sums + i + 8, reciprocal, offset));
    const __m256i high = _mm256_packs_epi32(quotients(sums + i + 16, reciprocal, offset),
                                            quotients(sums + i + 24, reciprocal, offset));
    seen = _mm256_or_si256(seen, _mm256_or_si256(low, high));
    store(out + i, _mm256_permutevar8x32_epi32(_mm256_packus_epi16(low, high), inOrder));
  }
  return _mm256_testz_si256(seen, _mm256_set1_epi16(-256)) != 0;
}

void divide(const std::uint32_t* sums, std::uint32_t window, unsigned char* out,
            std::size_t samples) {
  std::size_t inVectors = window <= kLargestFloatWindow ? samples / kVector * kVector : 0;
  if (!divideVectors(sums, window, out, inVectors)) inVectors = 0;
  divideLoop(sums + inVectors, window, out + inVectors, samples - inVectors);
}

// --- Amplification -------------------------------------------------------------------------------

/**
 * A gain table by its sixteen rows of sixteen: each is the first row raised by a number of its own,
 * in some columns by one more.
 *
 * The tables of factors are of this form: two truncated products add up to the truncated product of
 * the sum, or to one less. Only where products come within a rounding of whole numbers can they
 * miss it both ways in one row, and the plain loop takes such tables.
 */
struct Rows {
  unsigned char first[16];
  unsigned char raised[16];   // of every row
  unsigned char more[2][16];  // bit r % 8 of more[r / 8]: the columns of row r that have one more
};

/// @return false where the row is not of this form.
bool splitRow(const unsigned char* gain, unsigned row, Rows& rows) {
  const auto above = [=](unsigned column) {
    return static_cast<unsigned char>(gain[16 * row + column] - gain[column]);
  };
  unsigned char& raised = rows.raised[row];
  raised = above(0);
  for (unsigned column = 0; column < 16; ++column) {
    if (((above(column) + 1) & 255) == above(0)) raised = above(column);
  }
  for (unsigned column = 0; column < 16; ++column) {
    const unsigned more = static_cast<unsigned>(above(column) - raised) & 255;
    if (more > 1) return false;
    rows.more[row / 8][column] |= static_cast<unsigned char>(more << row % 8);
  }
  return true;
}

bool splitIntoRows(const unsigned char* gain, Rows& rows) {
  rows = {};
  for (unsigned row = 0; row < 16; ++row) {
    rows.first[row] = gain[row];
    if (!splitRow(gain, row, rows)) return false;
  }
  return true;
}

__m256i twice(const unsigned char* table16) {
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(table16)));
}

/// A gain table held in registers.
struct Gains {
  explicit Gains(const Rows& rows)
      : first(twice(rows.first)),
        raised(twice(rows.raised)),
        more{twice(rows.more[0]), twice(rows.more[1])} {}

  __m256i of(__m256i differences) const {
    const __m256i fourBits = _mm256_set1_epi8(15);
    const __m256i bits = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201));
    const __m256i column = _mm256_and_si256(differences, fourBits);
    const __m256i row = _mm256_and_si256(_mm256_srli_epi16(differences, 4), fourBits);
    const __m256i gains =
        _mm256_add_epi8(_mm256_shuffle_epi8(first, column), _mm256_shuffle_epi8(raised, row));
    // The uppermost bit of a difference chooses: it is set from row 8 on.
    const __m256i rowsWithMore = _mm256_blendv_epi8(
        _mm256_shuffle_epi8(more[0], column), _mm256_shuffle_epi8(more[1], column), differences);
    const __m256i bit = _mm256_shuffle_epi8(bits, row);
    const __m256i minusOne = _mm256_cmpeq_epi8(_mm256_and_si256(rowsWithMore, bit), bit);
    return _mm256_sub_epi8(gains, minusOne);
  }

  __m256i first;
  __m256i raised;
  __m256i more[2];
};

void amplify(const unsigned char* frame, const unsigned char* reference, const unsigned char* gain,
             unsigned char* out, std::size_t samples) {
  Rows rows;
  const std::size_t inVectors = splitIntoRows(gain, rows) ? samples / kVector * kVector : 0;
  const Gains gains(rows);
  for (std::size_t i = 0; i < inVectors; i += kVector) {
    CPU::fetchOnceAhead(frame + i, kFrameAhead);
    const __m256i newest = load(frame + i);
    const __m256i differences = _mm256_subs_epu8(newest, load(reference + i));
    store(out + i, _mm256_adds_epu8(newest, gains.of(differences)));
  }
  amplifyLoop(frame + inVectors, reference + inVectors, gain, out + inVectors, samples - inVectors);
}

}  // namespace

const MotionKernels kMotionKernelsAvx2{addLoop, exchangeLines, divide, amplify};

}  // namespace VLM_KPF
