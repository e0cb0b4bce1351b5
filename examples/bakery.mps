* A bakery plans one day: how many trays of bread, cake and rolls earn the most with the oven hours, the
* flour (kg) and the hours of work it has? At least 2 trays of bread are ordered already.
NAME          bakery
OBJSENSE
    MAX
ROWS
 N  profit
 L  oven
 L  flour
 L  work
COLUMNS
    bread     profit            45.0   oven               1.0
    bread     flour             14.0   work               0.6
    cake      profit            80.0   oven               1.5
    cake      flour              8.0   work               2.0
    rolls     profit            30.0   oven               0.5
    rolls     flour              9.0   work               0.8
RHS
    RHS       oven              16.0   flour            180.0
    RHS       work              20.0
BOUNDS
 LO BND       bread              2.0
 UP BND       rolls              8.0
ENDATA
