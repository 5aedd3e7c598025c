// sys_info_c: the description of the local system that the library makes at load and that
// nothing fills afterwards.
#include "files/sys_info.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

void expect_initial(const sys_info_c& info) {
    EXPECT_EQ(info.os_code, 36u);
    EXPECT_EQ(info.number, 1u);
    EXPECT_STREQ(info.first_text.c_str(), "");
    EXPECT_EQ(info.word, 0u);
    EXPECT_EQ(info.half1, 0u);
    EXPECT_EQ(info.half2, 0u);
    EXPECT_STREQ(info.second_text.c_str(), "");
    EXPECT_EQ(info.extra, 0u);
    EXPECT_STREQ(info.third_text.c_str(), "");
    for (std::uint64_t number : info.numbers) EXPECT_EQ(number, 0u);
}

TEST(SysInfo, InstanceIsMadeAtLoad) { EXPECT_NE(the_sys_info(), nullptr); }

TEST(SysInfo, InstanceHoldsTheStartingValues) {
    sys_info_c* info = the_sys_info();
    ASSERT_NE(info, nullptr);
    expect_initial(*info);
}

TEST(SysInfo, StartingAgainKeepsTheOneInstance) {
    sys_info_c* info = the_sys_info();
    start_sys_info();
    EXPECT_EQ(the_sys_info(), info);
}

TEST(SysInfo, NewObjectHoldsTheStartingValuesAndDiesThroughItsBase) {
    sys_info_c fresh;
    expect_initial(fresh);
    std::unique_ptr<sys_info_data_c> through_base = std::make_unique<sys_info_c>();
    EXPECT_EQ(through_base->os_code, 36u);
    EXPECT_EQ(through_base->number, 1u);
}

} // namespace
