/* The second 'count' and 'bump', with an initial value in .data. */
static int count = 100;

static int bump(int by)
{
    count -= by;
    return count;
}

int counter_b_next(int step)
{
    return bump(step);
}
