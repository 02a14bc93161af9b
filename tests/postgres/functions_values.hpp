// SPDX-License-Identifier: MIT
// Values with which the functions of two engines are compared.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace tavelor::engine::test {

/// Texts parted by ~.
inline std::vector<std::string> parted(std::string_view all) {
  std::vector<std::string> parts(1);
  for (const char c : all) {
    if (c == '~') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

constexpr double kTwo53 = 9007199254740992;
constexpr double kMost = std::numeric_limits<double>::max();
constexpr std::int64_t kLeast64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost64 = std::numeric_limits<std::int64_t>::max();

inline const std::vector<std::string> kTexts = parted(
    "~ ~   a  b ~a~A~abc~Caña de lomo~CAÑA DE LOMO~"
    "Almacén número 1~ÁÉÍÓÚÜÑÇ áéíóúüñç~straße STRASSE ẞ~"
    "İstanbul ıI iİ~e\u0301 E\u0301~😀 emoji 😀~"
    "ΣΊΣΥΦΟΣ σίσυφος ς~ЖжДд~ǅ ǆ Ǆ ﬁ ŉ ǰ~µ ÿ Ÿ Μ μ~K Å Ω ſ~"
    "ⅷ Ⅷ ⓐ Ⓐ 𐐀 𐐨 𞤀 Ა ა Ꭰ ꭰ~10% de 3_4 [x] #5 *?~"
    "back\\slash 'quote' \"double\"~line\nfeed\ttab\r~"
    "€ – “” … ×÷ ºª ¿¡~0123456789~a-z~]~!~-~"
    "abcdefghijklmnopqrstuvwxyz abcdefghijklmnopqrstuvwxyz");

inline const std::vector<std::string> kDates = parted(
    "01/01/2026~31/12/2026~12/31/2026~29/02/2024~29/02/2023~29/02/1900~29/02/2000~1-2-3~"
    "1/2/30~1/2/29~2026-11-21~2026/11/21~2026-31-1~24-03-05~100/1/1~1/1/100~1/1/99~"
    "31/12/9999~1/1/10000~5 de marzo de 2024~5 de marzo del 2024~marzo 5, 2024~"
    "2024 marzo 5~5 March 2024~mar, 5 mar 2024~mar 5 mar 2024~martes 5 marzo 2024~"
    "MIÉRCOLES, 6 DE MARZO DE 2024~miércoles 6 enero 2024~"
    "lunes, 21 de noviembre de 2026 10:30~10:30~10:30:59~23:59:59~24:00~10:60~10:30:60~"
    "10 am~12 am~12 pm~13 pm~0 am~10:30 PM~10:30pm~10:~10:x~1/1/2026 10:30~10:30 1/1/2026~"
    "1/1/2026 10:30 11:30~1/1/2026 2/2/2026~1/1/1899 6:00~30/12/1899~30/12/1899 12:00~"
    "29/12/1899 18:00~1/1~1//1~1 1 2026~1,1,2026~1/1/2026/~/1/1/2026~00001/1/2026~0/1/2026~"
    "1/0/2026~31/4/2026~ayer~~  ~\t1/1/2026 ~1.1.2026~1ñ1~1 de de 2026~1/mar/2024~"
    "mar/1/2024~1-ene-24~enero enero 2024~1/1/2026 a~46347~"
    "1 2 3 4 5 6 7 8 9 1 2 3 4 5 6 7 8~Sunday, January 4, 2026~4 January, 2026");

inline const std::vector<std::string> kNumberTexts = parted(
    "0~-0~1~+1~-1~12~1.5~1,5~1.234,5~1,234.5~1.2.3,4~,5~.5~5,~5.~-,5~,~.~-~+~--1~+-1~-+1~"
    "(5)~(5~5)~(-5)~( 5 )~€5~5€~5 €~€ 5 €~-€5~€-5~(€5)~$5~5$~ 5 ~\t5\n~5 5~1e5~1E5~1d5~"
    "1D-5~1e+5~1e~1e+~1e5,5~1e400~-1e400~1e-400~1e308~2e308~1,7976931348623159e308~1e-323~"
    "2e-324~3e-324~1e99999999999999999999~1e-99999999999999999999~0e99999~&H1A~&hff~&HFFFF~"
    "&HFFFF&~&H10000~&HFFFFFFFF~&H100000000~&O17~&O177777~&O8~&H~&~-&H10~+&H10~&HG~€&H1~"
    "(&H1)~&H1 ~&H1€~&H00000000000000001~&O37777777777~&O47777777777~&H12 34~doce~~ ~1x~ñ~"
    "NaN~inf~Infinity~0x10~1_000~123456789012345678~0,1234567890123456789~"
    "99999999999999999999999999999999999999999999999999~1 000~1\u00a0000~00012~-00,50~"
    "12abc~12 34~1 2 e 3~1e5x~+5~+-5~-+5~1,5,5~1..5~Verdadero~True~-5.5.5~5-");

inline const std::vector<std::string> kPatterns = parted(
    "~*~%~?~_~#~a*~*a~*a*~*A*~*ñ*~*Ñ*~caña*~*LOMO~*é*~*É*~*ß*~*ẞ*~*i*~*İ*~*ı*~*σ*~*ς*~*Σ~"
    "*ж*~??????~a?c~A__~*😀~?*~**~*\\*~*\\s*~\\~*'*~[a-c]*~[A-C]*~[!a-c]*~[áé]*~[Á-Ú]*~"
    "*[0-9]~*#*~##########~*[*]*~*[?]~*[#]5*~*[[]x]*~[]a~[]~[!]~[!]*~[-a]*~[a-]*~[a-a]*~"
    "[!-]~[^a]*~[a~*[~[z-a]~[a-~[\\]*~*[.]*~*(*#*~*[$]*~[!!]*~*_4*~10[%]*~line*~*\n*#*~"
    "[\n]~*K*~*k*~*å*");

inline const std::vector<std::string> kMasks = parted(
    "~0~#~0.00~#.##~.00~.##~#,##0.00~#,##0~0,000.0~0,~#,##0,,~0.0,~0%~0.0%%~0.00E+00~"
    "0.0e-0~##0.0E+0~.00E+0~0E~E+0~0E+##~0;(0)~0;;\"cero\"~0;(0);-;nada~"
    "0.00;\\-0.00;\"nada\"~;~;;~\"x\"~\"x~\\~\\00~000000~0-0-0~(###) ###-####~0.0.0~€ 0,00~"
    "0 €~ñ0ñ~0;\"a;b\"~General Number~Currency~Fixed~Standard~percent~SCIENTIFIC~Yes/No~"
    "True/False~On/Off~General Date~Long Date~Medium Date~Short Date~Long Time~Medium Time~"
    "Short Time~d~dd~ddd~dddd~ddddd~dddddd~m~mm~mmm~mmmm~mmmmm~y~yy~yyy~yyyy~yyyyy~h~hh~n~"
    "nn~s~ss~w~ww~q~c~ttttt~tttt~tttttt~dd/mm/yyyy hh:mm:ss~yyyy-mm-dd~h:mm~h:mmm~h m m~"
    "hh:nn AM/PM~h a/p~h AmPm~hh am/PM~a~abc~apd~HHMMSS~d \\d\\e mmmm~\"d\" d~\"d~\\d~dmy~"
    "ñd~@~@@@@@@~&&&&&&~!@@@@@@~!&&&~<~>~>@@-@@~<&-&~@;vacío~@;~\\@@~\"@\"@~!~<>~&ñ&~(@) @~"
    "x~t~tx~-");

// clang-format off
inline const std::vector<double> kNumbers{
    0, -0.0, 0.1, 0.2, 0.3, -0.1, 0.30000000000000004, 0.5, -0.5, 1, -1, 1.5, 2, 2.5, -2.5, 3,
    0.7, 4.35, 100, 1.005, 2.675, 0.00005, 0.00015, 1e-5, 0.12345, 0.123456789,
    0.49999999999999994, 2.4999999999999996, 3.4999999999999996, -3.4999999999999996, 166.386,
    123456.78945, 9999999999.99995, 10000000000.00005, 12345678901.23455, 900719925474.0991,
    900719925474.0993, 900719925475, 1234567890123456.5, 999999999999999.9, 1e15, 1e16,
    kTwo53 - 1, kTwo53, kTwo53 + 2, 922337203685477.5807, -922337203685477.5807,
    922337203685478, 9.2e18, 9.3e18, -9.3e18, 1e-20, 1e-160, 1e-200, -1e-200, 1e-310, 5e-324,
    -5e-324, 1e200, 1e308, -1e308, kMost, -kMost, 254.5, 255.5, 32767.5, -32768.5,
    2147483647.5, -2147483648.5, 3e-46, 7.006492321624085e-46, 7.1e-46, 3.4028235677973366e38,
    3.5e38, 16777217, 12345675, 12345665};
// clang-format on

// clang-format off
inline const std::vector<std::int64_t> kWholes{
    0, 1, -1, 2, -2, 3, 7, 10, 12, 100, 254, 255, 256, 10000, 32767, 32768, -32768, -32769,
    65535, 8388608, 2147483647, 2147483648, -2147483648, -2147483649, 999999999999999,
    1000000000000000, 9007199254740993, -9007199254740993, kMost64, kLeast64, kLeast64 + 1};
// clang-format on

}  // namespace tavelor::engine::test
