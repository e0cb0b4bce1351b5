/* bakery.c -- build a small linear program, solve it, read the plan and the prices */
#include <stdio.h>
#include <tarvex.h>

int main(void)
{
    /* How many trays of bread, cake and rolls earn the most? */
    char *products[] = {"bread", "cake", "rolls"};
    char *resources[] = {"oven", "flour", "work"};
    double profit[] = {45, 80, 30}, least[] = {2, 0, 0},
           most[] = {TVX_INFINITY, TVX_INFINITY, 8};
    /* What a tray needs of each resource, one row each, and what there is. */
    int begin[] = {0, 3, 6}, product[] = {0, 1, 2, 0, 1, 2, 0, 1, 2};
    double need[] = {1, 1.5, 0.5, 14, 8, 9, 0.6, 2, 0.8}, available[] = {16, 180, 20};
    double plan[3], price[3], value;
    TVXenv *env = NULL;
    TVXmodel *model = NULL;
    int j, status, error;

    error = TVXloadenv(&env, NULL);
    if (!error)
        error = TVXnewmodel(env, &model, "bakery", 3, profit, least, most, NULL, products);
    if (!error) error = TVXsetintattr(model, "ModelSense", -1); /* maximise */
    if (!error)
        error =
            TVXaddconstrs(model, 3, 9, begin, product, need, "<<<", available, resources);
    if (!error) error = TVXoptimize(model);
    if (!error) error = TVXgetintattr(model, "Status", &status);
    if (!error && status == TVX_OPTIMAL) {
        error = TVXgetdblattr(model, "ObjVal", &value);
        if (!error) error = TVXgetdblattrarray(model, "X", 0, 3, plan);
        if (!error) error = TVXgetdblattrarray(model, "Pi", 0, 3, price);
        if (!error) {
            printf("\nprofit %.2f\n", value);
            for (j = 0; j < 3; j++) printf("%-6s %6.2f trays\n", products[j], plan[j]);
            for (j = 0; j < 3; j++)
                printf("%-6s is worth %.2f a unit\n", resources[j], price[j]);
        }
    }
    if (error) fprintf(stderr, "error %d: %s\n", error, TVXgeterrormsg(env));
    TVXfreemodel(model);
    TVXfreeenv(env);
    return error != 0;
}
