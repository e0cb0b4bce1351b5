// containers_test.cpp -- text pool, index set and name index against the standard containers
#include "frame/runtime/index_set.h"
#include "frame/runtime/memory.h"
#include "frame/runtime/name_index.h"
#include "frame/runtime/text_pool.h"
#include "support/dice.h"
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

TEST(TextPool, BlocksOfAllSizesKeepTheirContent)
{
    Dice dice(1);
    TextPool *pool = PoolCreate(100);
    std::vector<std::pair<char *, std::string>> blocks;
    for (int k = 0; k < 2000; k++) {
        const int length = dice.chance(5) ? dice.range(90, 5000) : dice.range(0, 40);
        const std::string text(static_cast<size_t>(length),
                               static_cast<char>('a' + dice.range(0, 25)));
        char *copy = PoolCopy(pool, text.data(), text.size());
        ASSERT_NE(copy, nullptr);
        blocks.emplace_back(copy, text);
    }
    for (const auto &[copy, text] : blocks) ASSERT_EQ(copy, text);
    PoolFree(&pool);
    EXPECT_EQ(pool, nullptr);
    PoolFree(&pool);
    PoolFree(nullptr);
}

TEST(TextPool, ImpossibleSizeIsRefusedAndThePoolStaysUsable)
{
    TextPool *pool = PoolCreate(0);
    EXPECT_EQ(PoolAlloc(pool, SIZE_MAX - 4), nullptr);
    EXPECT_EQ(PoolCopy(pool, "", SIZE_MAX), nullptr);
    char *large = PoolAlloc(pool, 1000); // as the first block, before any usual chunk
    char *small = PoolCopy(pool, "x", 1);
    memset(large, 'l', 1000);
    EXPECT_STREQ(small, "x");
    PoolFree(&pool);
}

TEST(IndexSet, AgreesWithASetUnderRandomOperations)
{
    static constexpr int FIRST = -7;
    static constexpr int CAPACITY = 50;
    Dice dice(2);
    IndexSet set;
    ASSERT_EQ(index_set_alloc(&set, FIRST, CAPACITY), 0);
    std::set<int> plain;
    for (int k = 0; k < 20000; k++) {
        const int value = dice.range(FIRST, FIRST + CAPACITY - 1);
        switch (dice.range(0, 4)) {
        case 0:
        case 1:
            index_set_insert(&set, value);
            plain.insert(value);
            break;
        case 2:
            index_set_remove(&set, value);
            plain.erase(value);
            break;
        case 3: {
            const int popped = index_set_pop(&set);
            ASSERT_EQ(plain.erase(popped), popped == INDEX_SET_NONE ? 0u : 1u);
            break;
        }
        default:
            if (dice.chance(5)) {
                index_set_clear(&set);
                plain.clear();
            }
        }
        ASSERT_EQ(set.Count, static_cast<int>(plain.size()));
        for (int v = FIRST; v < FIRST + CAPACITY; v++)
            ASSERT_EQ(index_set_has(&set, v), plain.count(v) == 1);
    }
    index_set_clear(&set);
    EXPECT_EQ(index_set_pop(&set), INDEX_SET_NONE);
    index_set_free(&set);
    index_set_free(&set);
}

TEST(NameKey, CaseAndInnerUnderscoresDoNotCount)
{
    char key[NAME_KEY_LENGTH + 1];
    const std::map<std::string, std::string> cases = {
        {"TimeLimit", "timelimit"},
        {"TIME_LIMIT", "timelimit"},
        {"__A_b__C_", "__abc"},
        {"", ""},
        {"___", "___"},
        {"\xC4_x", "\xC4x"},
    };
    for (const auto &[name, expected] : cases) {
        name_key(name.c_str(), key);
        EXPECT_EQ(key, expected) << name;
    }
    name_key((std::string(511, 'A') + "_BC").c_str(), key);
    EXPECT_EQ(key, std::string(511, 'a')); // the underscore is the last character taken
}

// Names as models have them, and pieces of random bytes.
static std::string random_name(Dice *dice)
{
    if (dice->chance(50))
        return "x" + std::to_string(dice->range(0, 300)) + "_" +
               std::to_string(dice->range(0, 9));
    std::string name;
    for (int k = dice->range(0, 6); k > 0; k--)
        name += static_cast<char>(dice->range(-128, 127));
    return name;
}

class NameIndexGrowth : public testing::TestWithParam<NameGrowth>
{
};

TEST_P(NameIndexGrowth, AgreesWithAMapAndTheNewestEntryHidesOlderOnes)
{
    Dice dice(3);
    NameIndex *index = name_index_create(10, GetParam());
    ASSERT_NE(index, nullptr);
    std::map<std::string, int> plain;
    for (int k = 0; k < 5000; k++) {
        const std::string name = random_name(&dice);
        ASSERT_EQ(name_index_insert_n(index, name.data(), name.size(), k), 0);
        plain[name] = k;
        const std::string other = random_name(&dice);
        const auto found = plain.find(other);
        ASSERT_EQ(name_index_find_n(index, other.data(), other.size()),
                  found == plain.end() ? -1 : found->second);
    }
    for (const auto &[name, value] : plain)
        ASSERT_EQ(name_index_find_n(index, name.data(), name.size()), value);
    EXPECT_EQ(name_index_find(index, "not there"), -1);
    name_index_free(&index);
    EXPECT_EQ(index, nullptr);
    name_index_free(&index);
}
INSTANTIATE_TEST_SUITE_P(Both, NameIndexGrowth,
                         testing::Values(NameGrowth::FIXED, NameGrowth::ALLOWED));

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
        const size_t n = static_cast<size_t>(length);
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
    for (int fail_at = 1; fail_at <= 2; fail_at++) {
        IndexSet set;
        mem_fault_arm(fail_at);
        EXPECT_EQ(index_set_alloc(&set, 0, 10), OUT_OF_MEMORY);
        mem_fault_arm(0);
        index_set_free(&set);
    }
    EXPECT_EQ(mem_blocks_held(), before);
}

TEST(Memory, TheInjectorRefusesFromTheArmedRequestOnAndBlocksAreCounted)
{
    const int64_t before = mem_blocks_held();
    mem_fault_arm(2);
    void *first = MemAlloc(8);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(MemAllocZero(2, 8), nullptr);
    EXPECT_EQ(MemRealloc(first, 1 << 20), nullptr);
    EXPECT_EQ(mem_fault_hits(), 2);
    mem_fault_arm(0);
    EXPECT_EQ(mem_fault_hits(), 0);
    EXPECT_EQ(mem_blocks_held(), before + 1);
    MemFree(first);
    MemFree(nullptr);
    EXPECT_EQ(mem_blocks_held(), before);
    EXPECT_EQ(MemAlloc(0), nullptr);
    EXPECT_EQ(MemAllocZero(SIZE_MAX / 2, 8), nullptr); // overflow
    EXPECT_EQ(mem_blocks_held(), before);
}
#endif
