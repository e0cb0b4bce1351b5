// containers_test.cpp -- text pool, name index and the table of names under the readers against the standard containers
#include "files/name_table.h"
#include "runtime/memory.h"
#include "runtime/name_index.h"
#include "runtime/text_pool.h"
#include "support/dice.h"
#include <gtest/gtest.h>
#include <map>
#include <string>

TEST(TextPool, BlocksOfAllSizesKeepTheirContent)
{
    Dice dice(1);
    for (const bool large_first : {true, false}) {
        TextPool *pool = PoolCreate(large_first ? 0 : 100);
        std::vector<std::pair<char *, std::string>> blocks;
        for (int k = 0; k < 2000; k++) {
            const bool large = k == 0 ? large_first : dice.chance(5);
            const int length = large ? dice.range(90, 5000) : dice.range(0, 40);
            const std::string text(length, char('a' + dice.range(0, 25)));
            blocks.emplace_back(PoolCopy(pool, text.data(), text.size()), text);
        }
        EXPECT_EQ(PoolAlloc(pool, SIZE_MAX - 4), nullptr);
        EXPECT_EQ(PoolCopy(pool, "", SIZE_MAX), nullptr);
        for (const auto &[copy, text] : blocks) ASSERT_EQ(copy, text);
        PoolFree(&pool);
        PoolFree(&pool);
    }
}

// As models have them, or of few letters and odd bytes, some long.
static std::string random_name(Dice *dice)
{
    if (dice->chance(50))
        return "x" + std::to_string(dice->range(0, 300)) + "_" +
               std::to_string(dice->range(0, 9));
    std::string name(size_t(dice->range(0, dice->chance(1) ? 600 : 24)), 'a');
    for (char &c : name)
        c = char(dice->chance(90) ? 'a' + dice->range(0, 1) : dice->range(-128, 127));
    return name;
}

TEST(NameIndex, AgreesWithAMapAndTheNewestEntryHidesOlderOnes)
{
    for (const NameGrowth growth : {NameGrowth::FIXED, NameGrowth::ALLOWED}) {
        Dice dice(3);
        NameIndex *index = name_index_create(10, growth);
        std::map<std::string, int> plain;
        for (int k = 0; k < 5000; k++) {
            const std::string name = random_name(&dice), other = random_name(&dice);
            ASSERT_EQ(name_index_insert_n(index, name.data(), name.size(), k), 0);
            plain[name] = k;
            const auto found = plain.find(other);
            ASSERT_EQ(name_index_find_n(index, other.data(), other.size()),
                      found == plain.end() ? -1 : found->second);
        }
        EXPECT_EQ(name_index_find(index, "not there"), -1);
        name_index_free(&index);
        name_index_free(&index);
    }
}

TEST(NameTable, AgreesWithAMap)
{
    Dice dice(7);
    std::map<std::string, int> reference; // its names stay where they are
    NameTable table;
    for (int k = 0; k < 20000; k++) {
        const auto [known, is_new] =
            reference.try_emplace(random_name(&dice), int(table.entries.size));
        const char *name = known->first.data();
        const int64_t length = int64_t(known->first.size());
        ASSERT_EQ(name_table_find(&table, name, length),
                  is_new ? NAME_ABSENT : known->second);
        if (is_new) {
            ASSERT_EQ(name_table_append(&table, name, length), 0);
        }
    }
}

// Digit groups six characters apart cancel in the shift-and-fold hash; a growing index must not fall for them.
TEST(NameIndex, RegularlyNumberedNamesAreFoundQuickly)
{
    NameIndex *index = name_index_create(1, NameGrowth::ALLOWED);
    char name[64];
    static constexpr int N = 200'000; // minutes with long chains, a blink without
    for (int k = 0; k < 2 * N; k++) {
        const int i = k % N;
        const int length =
            snprintf(name, sizeof name, "x%05dy%05dz%05d", i / 2500, i / 50 % 50, i % 50);
        const size_t n = size_t(length);
        const int outcome = k < N ? name_index_insert_n(index, name, n, i)
                                  : name_index_find_n(index, name, n) - i;
        ASSERT_EQ(outcome, 0);
    }
    name_index_free(&index);
}

#ifdef TVX_DEBUG
TEST(Containers, RunOutOfMemoryAtAnyPointWithoutLossOrLeak)
{
    const int64_t before = mem_blocks_held();
    bool completed = false;
    for (int fail_at = 1; !completed; fail_at++) {
        mem_fault_arm(fail_at);
        NameIndex *index = name_index_create(2, NameGrowth::ALLOWED);
        int inserted = 0;
        while (index && inserted < 3000 &&
               name_index_insert(index, std::to_string(inserted).c_str(), inserted) == 0)
            inserted++;
        completed = mem_fault_hits() == 0;
        mem_fault_arm(0);
        for (int k = 0; k < inserted; k++)
            ASSERT_EQ(name_index_find(index, std::to_string(k).c_str()), k);
        EXPECT_TRUE(!index || name_index_insert(index, "again", 7) == 0);
        name_index_free(&index);
        ASSERT_EQ(mem_blocks_held(), before);
    }
}

TEST(Memory, TheInjectorRefusesFromTheArmedRequestOnAndBlocksAreCounted)
{
    const int64_t before = mem_blocks_held();
    mem_fault_arm(2);
    void *first = MemAlloc(8);
    EXPECT_TRUE(first && !MemAllocZero(2, 8) && !MemRealloc(first, 1 << 20));
    EXPECT_EQ(mem_fault_hits(), 2);
    mem_fault_arm(0);
    EXPECT_EQ(mem_blocks_held(), before + 1);
    for (void *block : {first, static_cast<void *>(nullptr)}) MemFree(block);
    EXPECT_EQ(mem_blocks_held(), before);
    EXPECT_TRUE(!MemAlloc(0) && !MemAllocZero(SIZE_MAX / 2, 8)); // overflow
}
#endif
