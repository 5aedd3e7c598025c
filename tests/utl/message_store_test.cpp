// message_store_c and message_c: the store without a message file (every look-up misses with
// its three trace lines), the message file format and what a bad file loads and skips, the
// fallback id, the upper-case look-up and the "%%%" marker; and the shipped message file.
#include "common/test_support.h"
#include "platform/os.h"
#include "utl/message.h"
#include "utl/message_store.h"
#include "utl/utl.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using test_support::trace_capture_c;

bool has_level(const std::string& line, unsigned level) {
    return line.find(" level=" + std::to_string(level) + " ") != std::string::npos;
}

// Every test starts and ends with an empty store: the store is process-wide.
class message_store_test : public ::testing::Test {
  protected:
    void SetUp() override { message_store_c::clear(); }
    void TearDown() override { message_store_c::clear(); }
};

std::vector<std::uint64_t> skipped_lines(const message_store_c::load_report_s& report) {
    std::vector<std::uint64_t> lines;
    for (const auto& skipped : report.skipped) lines.push_back(skipped.line);
    return lines;
}

} // namespace

TEST_F(message_store_test, without_a_message_file_every_message_is_not_found) {
    trace_capture_c capture;
    message_c message("IG00221");
    EXPECT_FALSE(message.found);
    EXPECT_STREQ(message.text.c_str(), "Message not found");
    EXPECT_STREQ(message.id.c_str(), "IG00221");
    EXPECT_EQ(message.count, 1);
    std::string text = capture.text();
    std::string zero =
        test_support::trace_line(text, "Message hash count is zero, message file is not loaded");
    ASSERT_FALSE(zero.empty()) << text;
    EXPECT_TRUE(has_level(zero, 4)) << zero;
    EXPECT_NE(zero.find("message_store_c::_find_message"), std::string::npos) << zero;
    std::string missing = test_support::trace_line(text, "Message not found for id IG00221");
    ASSERT_FALSE(missing.empty()) << text;
    EXPECT_TRUE(has_level(missing, 4));
    std::string not_found = test_support::trace_line(text, "Not found message with id IG00221");
    ASSERT_FALSE(not_found.empty()) << text;
    EXPECT_TRUE(has_level(not_found, 4));
    EXPECT_NE(not_found.find("message_store_c::message"), std::string::npos) << not_found;
}

TEST_F(message_store_test, a_loaded_text_is_found) {
    auto report = message_store_c::load_text("IG00221\tMaster\nIG00222\tReplica\n");
    EXPECT_TRUE(report.read);
    EXPECT_EQ(report.loaded, 2u);
    EXPECT_TRUE(report.skipped.empty());
    message_c message("IG00222");
    EXPECT_TRUE(message.found);
    EXPECT_STREQ(message.text.c_str(), "Replica");
    utl_stream_c stream;
    EXPECT_TRUE(message_store_c::message("IG00221", stream));
    EXPECT_STREQ(stream.c_str(), "Master");
}

TEST_F(message_store_test, a_lower_case_id_is_looked_up_in_upper_case) {
    message_store_c::load_text("IG00221\tMaster\n");
    message_c message("ig00221");
    EXPECT_STREQ(message.id.c_str(), "IG00221");
    EXPECT_TRUE(message.found);
    EXPECT_STREQ(message.text.c_str(), "Master");
}

TEST_F(message_store_test, a_missing_id_takes_the_fallback_text) {
    message_store_c::load_text("EG00347\tNo text.\n");
    trace_capture_c capture;
    message_c message("CV01350");
    EXPECT_TRUE(message.found);
    EXPECT_STREQ(message.text.c_str(), "No text.");
    EXPECT_EQ(capture.text().find("Message not found for id"), std::string::npos);
}

TEST_F(message_store_test, only_the_first_marker_takes_the_last_system_error) {
    message_store_c::load_text("EG00001\tOpen failed%%% and%%%\n");
    os::SetLastError(0);
    message_c without_error("EG00001");
    EXPECT_STREQ(without_error.text.c_str(), "Open failed and%%%");

    utl_stream_c expected(": ");
    utl_n::format_last_error(expected, 2);
    os::SetLastError(2);
    message_c with_error("EG00001");
    EXPECT_EQ(std::string(with_error.text.c_str()),
              "Open failed" + std::string(expected.c_str()) + " and%%%");
    EXPECT_NE(std::string(with_error.text.c_str()).find("(2)"), std::string::npos);
}

TEST_F(message_store_test, comments_empty_lines_crlf_and_no_final_line_end) {
    auto report =
        message_store_c::load_text("# catalogue\r\n\r\n\nIG00221\tMaster\r\nIG00222\tReplica");
    EXPECT_EQ(report.loaded, 2u);
    EXPECT_TRUE(report.skipped.empty());
    EXPECT_STREQ(message_c("IG00221").text.c_str(), "Master");
    EXPECT_STREQ(message_c("IG00222").text.c_str(), "Replica");
}

TEST_F(message_store_test, bad_lines_are_skipped_with_their_numbers_and_the_rest_loads) {
    std::string text = "IG00221\tMaster\n"    // 1
                       "IG00222 Replica\n"    // 2: no tab
                       "IG00221\tAgain\n"     // 3: a second text for one id
                       "I100221\tDigits\n"    // 4: not an id
                       "\tNo id\n"            // 5: no id
                       "CV01350\tBad \xC3(\n" // 6: not UTF-8
                       "CV01351\tGood\n";     // 7
    trace_capture_c capture;
    auto report = message_store_c::load_text(text);
    EXPECT_EQ(report.loaded, 2u);
    EXPECT_EQ(skipped_lines(report), (std::vector<std::uint64_t>{2, 3, 4, 5, 6}));
    EXPECT_STREQ(message_c("IG00221").text.c_str(), "Master");
    EXPECT_STREQ(message_c("CV01351").text.c_str(), "Good");
    EXPECT_FALSE(message_c("CV01350").found);
    std::string trace = capture.text();
    for (int line : {2, 3, 4, 5, 6})
        EXPECT_NE(trace.find("Message file line " + std::to_string(line) + " skipped: "),
                  std::string::npos)
            << line << "\n"
            << trace;
}

TEST_F(message_store_test, a_ten_megabyte_line_loads_whole) {
    std::string text = "IG00221\t" + std::string(10 * 1024 * 1024, 'x') + "\n";
    auto report = message_store_c::load_text(text);
    EXPECT_EQ(report.loaded, 1u);
    message_c message("IG00221");
    EXPECT_EQ(message.text.get_length(), 10u * 1024 * 1024);
}

TEST_F(message_store_test, a_missing_file_reads_nothing) {
    test_support::temp_dir_c dir;
    auto report = message_store_c::load_file(dir.join("none.msg").c_str());
    EXPECT_FALSE(report.read);
    EXPECT_EQ(report.loaded, 0u);
    EXPECT_FALSE(message_store_c::load_file(nullptr).read);
}

TEST_F(message_store_test, a_file_loads_like_its_text) {
    test_support::temp_dir_c dir;
    std::string path = dir.join("some.msg");
    test_support::write_file(path, "IG00221\tMaster\nbroken\n");
    auto report = message_store_c::load_file(path.c_str());
    EXPECT_TRUE(report.read);
    EXPECT_EQ(report.loaded, 1u);
    EXPECT_EQ(skipped_lines(report), (std::vector<std::uint64_t>{2}));
}

TEST_F(message_store_test, clear_empties_the_store) {
    message_store_c::load_text("IG00221\tMaster\n");
    message_store_c::clear();
    EXPECT_FALSE(message_c("IG00221").found);
    EXPECT_EQ(message_store_c::hash()->get_count(), 0u);
}

// The catalogue shipped with the library has a text for every id the system prints.
TEST_F(message_store_test, the_shipped_message_file_has_every_id) {
    auto report = message_store_c::load_file(STATS_MNG_MESSAGE_FILE);
    ASSERT_TRUE(report.read) << STATS_MNG_MESSAGE_FILE;
    EXPECT_TRUE(report.skipped.empty()) << report.skipped.front().line;
    std::vector<std::string> ids = {"IG00221", "IG00222", "IG01373", "IG01374", "EG00347",
                                    "IR00584", "IR00585", "IR00586", "IR00587"};
    for (int number = 1348; number <= 1382; ++number) ids.push_back("CV0" + std::to_string(number));
    EXPECT_EQ(report.loaded, ids.size());
    for (const std::string& id : ids) EXPECT_TRUE(message_store_c::hash()->find(id.c_str())) << id;
}

TEST(message_tables, the_word_tables_hold_their_codes) {
    struct expected_s {
        ptr_string_list_c* table;
        std::vector<std::pair<std::string, std::uintptr_t>> rows;
    };
    std::vector<expected_s> tables = {
        {message_tables_n::severity_table(),
         {{"Critical", 67}, {"Error", 69}, {"Info", 73}, {"SignificantInfo", 83}, {"Warning", 87}}},
        {message_tables_n::source_table(),
         {{"Cdp", 67},
          {"Drivers", 68},
          {"Manager", 77},
          {"Replicator", 82},
          {"System", 83},
          {"QvNet", 88},
          {"ScenarioValidation", 86},
          {"ServiceFailreason", 70},
          {"VssRequestor", 81},
          {"ScenarioGroup", 80},
          {"General", 71},
          {"NATUtilityUI", 73}}},
        {message_tables_n::activity_table(),
         {{"Assessment Mode", 1},
          {"Replication", 2},
          {"Synchronization", 3},
          {"Verification", 4},
          {"Vetted Failback", 5},
          {"CDP", 6}}},
    };
    for (const expected_s& expected : tables) {
        ASSERT_NE(expected.table, nullptr);
        std::vector<std::pair<std::string, std::uintptr_t>> rows;
        for (const void* data = expected.table->first(); data; data = expected.table->next(nullptr))
            rows.emplace_back(expected.table->get_current_name(nullptr),
                              reinterpret_cast<std::uintptr_t>(data));
        EXPECT_EQ(rows, expected.rows);
    }
}
