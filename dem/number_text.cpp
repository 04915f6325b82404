// Numbers out of text fields.
//
// C's `atoi` and `atof` follow the locale of the process, in which a number may have a comma;
// files do not.  `std::from_chars` knows no locale; what C's conversions accept beyond it
// (leading blanks, a plus sign, "0x", results out of range) is added here.

#include "dem/number_text.h"

#include <algorithm>
#include <limits>

#include "platform/real_from_chars.h"

#if defined(__GNUC__) && defined(__x86_64__)
#define KZGIS_DEM_WIDE
#include <immintrin.h>
#endif

namespace kzgis::dem {
namespace {

constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool is_hex_digit(char c) {
  return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// A text without its leading blanks and sign.
struct Unsigned {
  std::string_view rest;
  bool negative = false;
};

Unsigned without_sign(std::string_view text) {
  // What isspace() accepts in the locale "C".
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  if (text.empty() || (text.front() != '-' && text.front() != '+')) return {text, false};
  return {text.substr(1), text.front() == '-'};
}

/// True when a number that no double can hold is too large rather than too small.
///
/// Only the place of its first digit that is not 0 and its exponent matter: a double spans
/// more than 600 decimal places, so that the error of a place or two is none.
bool is_too_large(std::string_view digits, bool hexadecimal) {
  const auto is_figure = hexadecimal ? is_hex_digit : is_digit;
  long long place = 0;  // of the first digit that is not 0, left of the point > 0
  bool behind_point = false;
  bool found = false;
  std::size_t i = 0;
  for (; i < digits.size(); ++i) {
    const char c = digits[i];
    if (c == '.' && !behind_point) {
      behind_point = true;
    } else if (!is_figure(c)) {
      break;
    } else {
      found = found || c != '0';
      if (found && !behind_point) ++place;
      if (!found && behind_point) --place;
    }
  }
  long long exponent = 0;
  if (i < digits.size()) {
    const auto [rest, negative] = without_sign(digits.substr(i + 1));
    for (std::size_t k = 0; k < rest.size() && is_digit(rest[k]); ++k) {
      // Large enough to outweigh the places of any text.
      exponent = std::min(exponent * 10 + (rest[k] - '0'), 1LL << 50);
    }
    if (negative) exponent = -exponent;
  }
  return place * (hexadecimal ? 4 : 1) + exponent > 0;
}

#if defined(KZGIS_DEM_WIDE)

/// The same as plain_number, four fields at a time, after W. Mula, "SIMD-ized number parsing".
/// @return how many fields were read, all plain; it stops in front of others, and of the last few
__attribute__((target("avx2"))) std::size_t plain_numbers_by_four(const char* fields,
                                                                  std::size_t count, int* values) {
  constexpr std::size_t kWidth = 6;
  // Each field to eight bytes, with two zeros in front.
  const __m256i spread = _mm256_broadcastsi128_si256(
      _mm_setr_epi8(-1, -1, 0, 1, 2, 3, 4, 5, -1, -1, 6, 7, 8, 9, 10, 11));
  const __m256i last = _mm256_set1_epi64x(static_cast<long long>(0xFF00000000000000U));
  const __m256i nine = _mm256_set1_epi8(9);
  std::size_t i = 0;
  // Sixteen bytes are read where twelve are wanted.
  for (; i + 5 <= count; i += 4) {
    const char* const at = fields + kWidth * i;
    const __m256i text = _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(at + 2 * kWidth)), 1);
    const __m256i bytes = _mm256_shuffle_epi8(text, spread);
    const __m256i blank = _mm256_or_si256(_mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(' ')),
                                          _mm256_set1_epi64x(0xFFFF));
    const __m256i digits =
        _mm256_andnot_si256(blank, _mm256_sub_epi8(bytes, _mm256_set1_epi8('0')));
    // Beyond 9, a blank behind a digit, blanks only.
    const __m256i small = _mm256_cmpeq_epi8(_mm256_min_epu8(digits, nine), digits);
    const __m256i odd = _mm256_or_si256(_mm256_andnot_si256(blank, _mm256_srli_epi64(blank, 8)),
                                        _mm256_and_si256(blank, last));
    if (_mm256_testc_si256(small, _mm256_set1_epi8(-1)) == 0 || _mm256_testz_si256(odd, odd) == 0) {
      break;
    }
    // Neighbours are joined three times: digits to pairs, pairs to fours, fours to the number.
    const __m256i pairs = _mm256_maddubs_epi16(digits, _mm256_set1_epi16(0x010A));
    const __m256i fours = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00010064));
    const __m256i packed = _mm256_packus_epi32(fours, fours);
    const __m256i numbers = _mm256_madd_epi16(packed, _mm256_set1_epi32(0x00012710));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(values + i),
                     _mm256_castsi256_si128(_mm256_permute4x64_epi64(numbers, 0x08)));
  }
  return i;
}

#endif

}  // namespace

bool plain_numbers(const char* fields, std::size_t count, int* values) {
  std::size_t i = 0;
#if defined(KZGIS_DEM_WIDE)
  static const bool has_avx2 = __builtin_cpu_supports("avx2") != 0;
  if (has_avx2) i = plain_numbers_by_four(fields, count, values);
#endif
  std::uint64_t odd = 0;
  for (; i < count; ++i) {
    const PlainNumber number = plain_number(fields + 6 * i);
    values[i] = number.value;
    odd |= number.odd;
  }
  return odd == 0;
}

NumberText<int> integer_of(std::string_view text) {
  const auto [digits, negative] = without_sign(text);
  constexpr long long kMax = std::numeric_limits<int>::max();
  long long value = 0;
  std::size_t i = 0;
  // The sum stops one above the largest int, which is the magnitude of the least one.
  for (; i < digits.size() && is_digit(digits[i]); ++i) {
    value = std::min(value * 10 + (digits[i] - '0'), kMax + 1);
  }
  if (i == 0) return {};
  const long long in_range = negative ? -value : std::min(value, kMax);
  return {static_cast<int>(in_range), text.size() - digits.size() + i};
}

NumberText<double> real_of(std::string_view text) {
  auto [digits, negative] = without_sign(text);
  // from_chars would accept a second sign.
  if (digits.empty() || digits.front() == '-') return {};

  const bool hexadecimal = digits.size() > 2 && digits[0] == '0' &&
                           (digits[1] == 'x' || digits[1] == 'X') &&
                           (is_hex_digit(digits[2]) ||
                            (digits.size() > 3 && digits[2] == '.' && is_hex_digit(digits[3])));
  // from_chars reads hexadecimal digits, but no "0x" in front of them.  A "0x" without a digit
  // behind it is a 0 and some other text.
  if (hexadecimal) digits.remove_prefix(2);

  double value = 0.0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = real_from_chars(
      digits.data(), end, value, hexadecimal ? std::chars_format::hex : std::chars_format::general);
  if (error == std::errc::invalid_argument) return {};
  // from_chars does not tell too large from too small, and stores nothing.
  if (error == std::errc::result_out_of_range) {
    const auto length = static_cast<std::size_t>(stop - digits.data());
    value = is_too_large(digits.substr(0, length), hexadecimal)
                ? std::numeric_limits<double>::infinity()
                : 0.0;
  }
  return {negative ? -value : value, text.size() - static_cast<std::size_t>(end - stop)};
}

}  // namespace kzgis::dem
