/* A file static 'count' and a static 'bump', both named again in counter_b.c. */
static int count;
static const char tag[] = "alpha";

static int bump(int by)
{
    count += by;
    return count;
}

int counter_a_next(int step)
{
    return bump(step) + tag[0];
}
