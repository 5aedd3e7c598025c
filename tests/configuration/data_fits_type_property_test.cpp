// A property test of data_fits_type: for many random texts (fixed seed), the answer agrees with
// a restatement of the rules written here from scratch, with regular expressions and calendar
// arithmetic instead of the library's scanners and the C runtime's clock, for IPv4 addresses,
// address masks, numbers up to and past the 64-bit limits, and dates. A disagreement prints the
// text.
#include "configuration/xmc_enums.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <random>
#include <regex>
#include <string>
#include <vector>

namespace {

constexpr int iterations = 20000;

// ---- the restatement --------------------------------------------------------------------------

const std::string blank = "[ \\t\\n\\v\\f\\r]";
// One "%u" field: blanks, then digits with an optional plus, or a minus before zeros only (a
// minus before anything else reads as a number far above 255).
const std::string field = blank + "*(?:\\+?([0-9]+)|-(0+)|-[0-9]+)";

// The digits of a field, or "" for a negative one.
bool below_256(const std::string& digits) {
    if (digits.empty()) return false;
    std::size_t first = digits.find_first_not_of('0');
    if (first == std::string::npos) return true;
    std::string significant = digits.substr(first);
    return significant.size() <= 3 && std::stoi(significant) < 256;
}

// The value of a field known to be below 256.
unsigned value_of(const std::string& digits) {
    std::size_t first = digits.find_first_not_of('0');
    return first == std::string::npos ? 0u : static_cast<unsigned>(std::stoi(digits.substr(first)));
}

// What the match of `field` said: the digits of group a, the zeros of group b, or nothing.
std::string digits_of(const std::smatch& m, std::size_t a) {
    if (m[a].matched) return m[a].str();
    if (m[a + 1].matched) return m[a + 1].str();
    return "";
}

bool restated_ip(const std::string& text) {
    if (text.empty()) return true;
    static const std::regex whole("^" + field + "\\." + field + "\\." + field + "\\." + field +
                                  "$");
    std::smatch m;
    if (!std::regex_match(text, m, whole)) return false;
    unsigned sum = 0;
    for (std::size_t f = 0; f < 4; ++f) {
        std::string digits = digits_of(m, 1 + 2 * f);
        if (!below_256(digits)) return false;
        sum += value_of(digits);
    }
    return sum != 0;
}

bool restated_mask(const std::string& text) {
    if (text.empty()) return true;
    static const std::regex start("^" + field + "\\." + field + "\\." + field + "\\." + field +
                                  "/" + field + "\\." + field + "\\." + field + "\\." + field);
    std::smatch m;
    if (!std::regex_search(text, m, start)) return false;
    unsigned v[8];
    for (std::size_t f = 0; f < 8; ++f) {
        std::string digits = digits_of(m, 1 + 2 * f);
        if (!below_256(digits)) return false;
        v[f] = value_of(digits);
    }
    if (v[0] + v[1] + v[2] + v[3] == 0) return false;
    std::uint32_t mask = v[4] << 24 | v[5] << 16 | v[6] << 8 | v[7];
    std::uint32_t hosts = ~mask;
    return mask != 0 && (hosts & (hosts + 1)) == 0;
}

// Decimal or hexadecimal magnitude against a limit of the same base, both without leading zeros.
bool not_above(const std::string& digits, const std::string& limit) {
    std::size_t first = digits.find_first_not_of('0');
    std::string d = first == std::string::npos ? "0" : digits.substr(first);
    std::string upper;
    for (char c : d) upper += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (upper.size() != limit.size()) return upper.size() < limit.size();
    return upper <= limit;
}

bool restated_number(const std::string& text) {
    static const std::regex form("^[ \\t]*([+-]?)(?:0[xX]([0-9a-fA-F]+)|([0-9]+))[ \\t]*$");
    std::smatch m;
    if (!std::regex_match(text, m, form)) return false;
    bool negative = m[1].str() == "-";
    if (m[2].matched)
        return not_above(m[2].str(), negative ? "8000000000000000" : "FFFFFFFFFFFFFFFF");
    return not_above(m[3].str(), negative ? "9223372036854775808" : "18446744073709551615");
}

// A date field: ANY is -1, a whole signed decimal within int is itself; nothing else is one.
bool date_field(const std::string& text, long long& value) {
    if (text == "ANY") {
        value = -1;
        return true;
    }
    static const std::regex number("^" + blank + "*([+-]?)([0-9]+)$");
    std::smatch m;
    if (!std::regex_match(text, m, number)) return false;
    std::string digits = m[2].str();
    std::size_t first = digits.find_first_not_of('0');
    digits = first == std::string::npos ? "0" : digits.substr(first);
    if (digits.size() > 10) return false;
    long long v = std::stoll(digits) * (m[1].str() == "-" ? -1 : 1);
    if (v > 2147483647LL || v < -2147483648LL) return false;
    value = v;
    return true;
}

long long days_from_civil(long long y, long long m, long long d) {
    y -= m <= 2;
    long long era = (y >= 0 ? y : y - 399) / 400;
    long long yoe = y - era * 400;
    long long doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    long long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

bool leap(long long y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

bool restated_date(const std::string& full) {
    std::string text = full.substr(0, 127);
    long long day = 0, month = 0, year = 0;
    std::size_t sep = text.find(':');
    if (sep == std::string::npos) sep = text.find('.');
    if (sep != std::string::npos) {
        std::string rest = text.substr(sep + 1);
        std::size_t second = rest.find_first_of(":.");
        if (second == std::string::npos) return false;
        if (!date_field(text.substr(0, sep), day) || !date_field(rest.substr(0, second), month) ||
            !date_field(rest.substr(second + 1), year))
            return false;
    } else {
        std::vector<std::string> tokens;
        std::string word;
        auto flush = [&] {
            for (std::size_t at = 0; at < word.size(); at += 31)
                tokens.push_back(word.substr(at, 31));
            word.clear();
        };
        for (char c : text) {
            if (c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r')
                flush();
            else
                word += c;
        }
        flush();
        if (tokens.size() != 3) return false;
        if (!date_field(tokens[0], day) || !date_field(tokens[2], year)) return false;
        const char* names[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
        month = 0;
        for (int i = 0; i < 12; ++i)
            if (tokens[1] == names[i]) month = i + 1;
        if (!month && !date_field(tokens[1], month)) return false;
    }
    if (month != -1 && (month < 1 || month > 12)) return false;
    if (day != -1 && (day < 1 || day > 31)) return false;
    if (year != -1 && year < 1901) return false;
    if (day == -1 && month == -1 && year == -1) return false;
    if (day == -1 || month == -1) return true;
    long long y = year == -1 ? 2000 : year;
    const int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    long long length = lengths[month - 1] + (month == 2 && leap(y) ? 1 : 0);
    if (day > length) return false;
    // Midnight UTC must be a time of the Windows runtime: after the epoch, before 3001.
    long long seconds = days_from_civil(y, month, day) * 86400;
    return seconds >= 1 && seconds <= 32535215999LL;
}

// ---- random texts -----------------------------------------------------------------------------

class texts_c {
  public:
    explicit texts_c(std::uint32_t seed) : _rng(seed) {}

    int below(int n) { return static_cast<int>(_rng() % static_cast<std::uint32_t>(n)); }

    template <std::size_t N> const char* pick(const char* const (&list)[N]) {
        return list[below(static_cast<int>(N))];
    }

    std::string noise(const char* alphabet, int max_length) {
        std::string out;
        std::string letters(alphabet);
        int n = below(max_length + 1);
        for (int i = 0; i < n; ++i)
            out += letters[static_cast<std::size_t>(below(static_cast<int>(letters.size())))];
        return out;
    }

    std::string number_field() {
        static const char* const fields[] = {"0",
                                             "1",
                                             "00",
                                             "255",
                                             "256",
                                             "127",
                                             "-0",
                                             "-1",
                                             "+7",
                                             " 8",
                                             "\t9",
                                             "999",
                                             "0255",
                                             "4294967296",
                                             "18446744073709551616",
                                             "",
                                             "x",
                                             "1x",
                                             "00000000000001"};
        if (below(4) == 0) return std::to_string(below(300));
        return pick(fields);
    }

    std::string address() {
        std::string out = number_field();
        int fields = below(10) == 0 ? below(6) : 3;
        for (int i = 0; i < fields; ++i) out += (below(20) == 0 ? "," : ".") + number_field();
        return out;
    }

    std::string mask() {
        static const char* const masks[] = {"255.255.255.255", "255.255.0.0",   "128.0.0.0",
                                            "255.0.255.0",     "0.0.0.0",       "255.255.255.254",
                                            "254.0.0.0",       "255.255.128.0", "255.255.192.1"};
        std::string out = address() + (below(15) == 0 ? "\\" : "/");
        out += below(3) == 0 ? address() : pick(masks);
        if (below(5) == 0) out += noise(" x.9/", 4);
        return out;
    }

    std::string number() {
        static const char* const edges[] = {"9223372036854775807",
                                            "9223372036854775808",
                                            "9223372036854775809",
                                            "18446744073709551615",
                                            "18446744073709551616",
                                            "99999999999999999999",
                                            "0xFFFFFFFFFFFFFFFF",
                                            "0x10000000000000000",
                                            "0x8000000000000000",
                                            "0x8000000000000001",
                                            "0x",
                                            "0x0",
                                            "00000000000000000000000018446744073709551615"};
        std::string out;
        if (below(3) == 0) out += pick({" ", "\t", "  "});
        if (below(3) == 0) out += pick({"-", "+", "--"});
        out += below(2) ? std::string(pick(edges)) : noise("0123456789abcdefxX", 24);
        if (below(3) == 0) out += pick({" ", "\t", " x", "\n"});
        return out;
    }

    std::string date() {
        static const char* const days[] = {"1",   "29", "30", "31", "32",  "0", "ANY",
                                           "any", "-1", "+5", " 7", "007", "x", ""};
        static const char* const months[] = {"1",   "2",   "4",   "12",  "13",   "0",  "ANY",
                                             "Feb", "feb", "Jan", "Dec", "Sept", "-1", " 3"};
        static const char* const years[] = {
            "2013", "2012", "2000", "2100", "1900",        "1901",       "1969",  "1970",
            "1971", "3000", "3001", "ANY",  "99999999999", "2147483647", "2013 ", "13"};
        static const char* const separators[] = {":", ".", " ", "  ", "\t", "/", ":."};
        if (below(10) == 0) return noise("0123456789:. ANYJanFeb\t-", 40);
        std::string d = below(4) == 0 ? std::to_string(below(40)) : std::string(pick(days));
        std::string m = below(4) == 0 ? std::to_string(below(15)) : std::string(pick(months));
        std::string y =
            below(3) == 0 ? std::to_string(1890 + below(1200)) : std::string(pick(years));
        const char* s1 = pick(separators);
        const char* s2 = below(3) ? s1 : pick(separators);
        std::string out = d + s1 + m + s2 + y;
        if (below(15) == 0) out = std::string(static_cast<std::size_t>(below(130)), ' ') + out;
        if (below(15) == 0) out += std::string(40, 'y');
        return out;
    }

  private:
    std::mt19937 _rng;
};

bool fits(const std::string& text, std::uint32_t type) {
    return xmc_enum_c::data_fits_type(text.c_str(), type, 16, nullptr);
}

// The date rule asks the runtime for local time; UTC makes it the calendar of the restatement.
class utc_c {
  public:
    utc_c() {
        const char* old = std::getenv("TZ");
        _had = old != nullptr;
        if (old) _old = old;
        set("UTC0");
    }
    ~utc_c() { set(_had ? _old.c_str() : ""); }
    utc_c(const utc_c&) = delete;
    utc_c& operator=(const utc_c&) = delete;

  private:
    static void set(const char* zone) {
#if defined(_WIN32)
        _putenv((std::string("TZ=") + zone).c_str());
        _tzset();
#else
        if (*zone)
            setenv("TZ", zone, 1);
        else
            unsetenv("TZ");
        tzset();
#endif
    }
    bool _had = false;
    std::string _old;
};

template <class Make, class Rule>
void agree(std::uint32_t seed, std::uint32_t type, Make make, Rule rule) {
    texts_c texts(seed);
    int accepted = 0, disagreements = 0;
    for (int i = 0; i < iterations && disagreements < 10; ++i) {
        std::string text = make(texts);
        bool expected = rule(text);
        accepted += expected ? 1 : 0;
        if (fits(text, type) != expected) {
            ++disagreements;
            ADD_FAILURE() << "\"" << text << "\": the rule says " << expected;
        }
    }
    // The texts must exercise both answers, or the agreement proves little.
    EXPECT_GT(accepted, iterations / 50);
    EXPECT_LT(accepted, iterations - iterations / 50);
}

} // namespace

TEST(DataFitsTypeProperty, IpAddressesAgreeWithTheRestatement) {
    agree(
        1, xmc_n::type_ip_addr, [](texts_c& t) { return t.address(); }, restated_ip);
}

TEST(DataFitsTypeProperty, AddressMasksAgreeWithTheRestatement) {
    agree(
        2, xmc_n::type_ip_adr_mask, [](texts_c& t) { return t.mask(); }, restated_mask);
}

TEST(DataFitsTypeProperty, NumbersAtAndPastTheLimitsAgreeWithTheRestatement) {
    agree(
        3, xmc_n::type_number, [](texts_c& t) { return t.number(); }, restated_number);
}

TEST(DataFitsTypeProperty, DatesAgreeWithTheRestatement) {
    utc_c utc;
    agree(
        4, xmc_n::type_date, [](texts_c& t) { return t.date(); }, restated_date);
}

TEST(DataFitsTypeProperty, AnyBytesNeverBreakAnyType) {
    texts_c texts(5);
    std::string all_bytes;
    for (int b = 1; b < 256; ++b) all_bytes += static_cast<char>(b);
    for (int i = 0; i < iterations; ++i) {
        std::string text = texts.noise(all_bytes.c_str(), 200);
        for (std::uint32_t type = 0; type <= 10; ++type)
            for (std::uint32_t e : {1u, 5u, 16u})
                xmc_enum_c::data_fits_type(text.c_str(), type, e, nullptr);
    }
    SUCCEED();
}
