#include "frontend/HighScoreTable.h"
#include "platform/Types.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

CHighScoreTable TableOf(const std::vector<std::int32_t>& scores)
{
    CHighScoreTable table;
    for (std::size_t i = 0; i < scores.size(); ++i)
        table.SetEntry(static_cast<int>(i), "P" + std::to_string(i), scores[i]);
    return table;
}

std::string Entries(const CHighScoreTable& table)
{
    std::string entries;
    for (int i = 0; i < CHighScoreTable::Size; ++i)
        entries += table.GetName(i) + ":" + std::to_string(table.GetScore(i)) + " ";
    return entries;
}

void Type(CHighScoreTable& table, const std::vector<UINT>& keys, bool pressed = true)
{
    for (UINT key : keys)
        table.EnterNameKey(static_cast<std::uint8_t>(key), pressed);
}

TEST(HighScoreInsertion, TiesGoBelowTheLastEntryDropsOutAndZeroNeverEnters)
{
    CHighScoreTable table = TableOf({900, 500, 500, 100, 9, 8, 7, 6, 5, 4});
    ASSERT_TRUE(table.Insert(500));
    EXPECT_EQ(table.GetEditIndex(), 3);
    EXPECT_EQ(Entries(table), "P0:900 P1:500 P2:500 :500 P3:100 P4:9 P5:8 P6:7 P7:6 P8:5 ");

    CHighScoreTable tenth = TableOf({90, 80, 70, 60, 50, 40, 30, 20, 10, 5});
    EXPECT_FALSE(tenth.Insert(5)); // equal to the last: not entered
    EXPECT_FALSE(tenth.IsEditing());
    ASSERT_TRUE(tenth.Insert(6));
    EXPECT_EQ(tenth.GetEditIndex(), 9);
    EXPECT_EQ(Entries(tenth), "P0:90 P1:80 P2:70 P3:60 P4:50 P5:40 P6:30 P7:20 P8:10 :6 ");

    CHighScoreTable zeros;
    EXPECT_FALSE(zeros.Insert(0));
    ASSERT_TRUE(zeros.Insert(1));
    EXPECT_EQ(Entries(zeros), ":1 :0 :0 :0 :0 :0 :0 :0 :0 :0 ");
}

TEST(NameEntry, TypedKeysUpToThirtyCharacters)
{
    CHighScoreTable table;
    table.Insert(10);
    Type(table, {'A', VK_SPACE, '7', VK_LEFT, '.', 0xC0, 0});
    Type(table, {'B'}, false); // key-ups type nothing
    EXPECT_EQ(table.GetName(0), "A 7");
    Type(table, {VK_BACK, VK_BACK, VK_BACK, VK_BACK}); // one more than there is
    EXPECT_EQ(table.GetName(0), "");
    for (int i = 0; i < 31; ++i)
        Type(table, {static_cast<UINT>('A' + i % 26)});
    EXPECT_EQ(table.GetName(0), "ABCDEFGHIJKLMNOPQRSTUVWXYZABCD");
}

} // namespace
