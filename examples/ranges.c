/* ranges.c -- how far a price or a stock may move before the plan has to change
 *
 * A bakery has a plan for the day. Which profits does it hang on, and over which stocks do the prices that the plan
 * puts on oven, flour and work hold? The ranges answer without solving again.
 */
#include <stdio.h>
#include <tarvex.h>

static char *products[] = {"bread", "cake", "rolls"};
static char *resources[] = {"oven", "flour", "work"};

/* An end at 1e100 in magnitude is none. */
static void print_range(double low, double up)
{
    if (low <= -TVX_INFINITY)
        printf("%13s", "any");
    else
        printf("%13.2f", low);
    if (up >= TVX_INFINITY)
        printf("%10s\n", "any");
    else
        printf("%10.2f\n", up);
}

static int print_profits(TVXmodel *model)
{
    double plan[3], profit[3], low[3], up[3];
    int j, error;

    error = TVXgetdblattrarray(model, "X", 0, -1, plan);
    if (!error) error = TVXgetdblattrarray(model, "Obj", 0, -1, profit);
    if (!error) error = TVXgetdblattrarray(model, "SAObjLow", 0, -1, low);
    if (!error) error = TVXgetdblattrarray(model, "SAObjUp", 0, -1, up);
    if (error) return error;
    printf("%-8s%9s%9s%13s%10s\n", "product", "trays", "profit", "same plan", "up to");
    for (j = 0; j < 3; j++) {
        printf("%-8s %8.2f %8.2f", products[j], plan[j], profit[j]);
        print_range(low[j], up[j]);
    }
    return 0;
}

static int print_stocks(TVXmodel *model)
{
    double stock[3], price[3], low[3], up[3];
    int i, error;

    error = TVXgetdblattrarray(model, "RHS", 0, -1, stock);
    if (!error) error = TVXgetdblattrarray(model, "Pi", 0, -1, price);
    if (!error) error = TVXgetdblattrarray(model, "SARHSLow", 0, -1, low);
    if (!error) error = TVXgetdblattrarray(model, "SARHSUp", 0, -1, up);
    if (error) return error;
    printf("\n%-8s%9s%9s%13s%10s\n", "stock", "units", "price", "same price", "up to");
    for (i = 0; i < 3; i++) {
        printf("%-8s %8.2f %8.2f", resources[i], stock[i], price[i]);
        print_range(low[i], up[i]);
    }
    return 0;
}

int main(void)
{
    double profit[] = {45, 80, 30}, need[] = {1, 1.5, 0.5, 14, 8, 9, 0.6, 2, 0.8},
           available[] = {16, 180, 20};
    int begin[] = {0, 3, 6}, product[] = {0, 1, 2, 0, 1, 2, 0, 1, 2};
    TVXenv *env = NULL;
    TVXmodel *model = NULL;
    int error, status = 0;

    if (TVXloadenv(&env, NULL)) return 1;
    error = TVXsetintparam(env, "OutputFlag", 0);
    if (!error)
        error = TVXnewmodel(env, &model, "bakery", 3, profit, NULL, NULL, NULL, products);
    if (!error) error = TVXsetintattr(model, "ModelSense", -1);
    if (!error)
        error =
            TVXaddconstrs(model, 3, 9, begin, product, need, "<<<", available, resources);
    if (!error) error = TVXoptimize(model);
    if (!error) error = TVXgetintattr(model, "Status", &status);
    if (!error && status == TVX_OPTIMAL) { /* ranges belong to an optimal plan */
        error = print_profits(model);
        if (!error) error = print_stocks(model);
    }
    if (error) fprintf(stderr, "error: %s\n", TVXgeterrormsg(env));
    TVXfreemodel(model);
    TVXfreeenv(env);
    return error != 0;
}
