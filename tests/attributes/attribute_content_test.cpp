// attribute_content_test.cpp -- attributes of the content: texts that stay, statistics
//
// That what is set is what is read is looked at by fuzz/corpus_test.cpp.
#include "support/model_test.h"
#include "support/text_model.h"

namespace
{

struct AttributeContent : ModelTest {
    void SetUp() override
    {
        model = model_of_text(env.env,
                              "max 3 x - y + 7 st x + 2 y <= 8  R1: x - y >= -2  R2: x "
                              "+ y = 4 bounds y free");
    }
};

} // namespace

TEST_F(AttributeContent, texts_are_copied_and_stay_where_they_are_until_the_next_update)
{
    char name_a[] = "a", name_b[] = "b", *names[] = {name_a, name_b};
    ASSERT_EQ(TVXsetstrattrarray(model, "ConstrName", 1, 2, names), 0);
    name_a[0] = 'z';
    update();
    char *first[3] = {}, *again[3] = {};
    ASSERT_EQ(TVXgetstrattrarray(model, "ConstrName", 0, 3, first), 0);
    ASSERT_EQ(TVXgetstrattrarray(model, "ConstrName", 0, 3, again), 0);
    for (int i = 0; i < 3; i++) EXPECT_EQ(first[i], again[i]);
    EXPECT_EQ(std::string(first[0]) + first[1] + first[2], "R0ab");
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', "later"), 0);
    EXPECT_STREQ(first[0], "R0");
}

TEST_F(AttributeContent, statistics_pass_over_zeros_and_infinities)
{
    const auto statistics = [this] {
        std::vector<double> found;
        for (const char *name : {"MaxCoeff", "MinCoeff", "MaxObjCoeff", "MinObjCoeff",
                                 "MaxRHS", "MinRHS", "MaxBound", "MinBound"})
            found.push_back(dbl(name));
        return found;
    };
    const std::vector<double> before{2, 1, 3, 1, 8, 2, 0, 0}; // no finite upper bound
    EXPECT_EQ(statistics(), before);
    const double upper[] = {-3, -8}, obj[] = {0, 9};
    ASSERT_EQ(TVXsetdblattrarray(model, "UB", 0, 2, upper), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "LB", 0, -20), 0);
    ASSERT_EQ(TVXsetdblattrarray(model, "Obj", 0, 2, obj), 0);
    EXPECT_EQ(statistics(), before) << "still those of the model before the update";
    update();
    EXPECT_EQ(statistics(), (std::vector<double>{2, 1, 9, 9, 8, 2, -3, -20}));
}
