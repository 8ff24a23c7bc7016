/* Entry of the expression test firmware. */
#include "types.h"

extern struct point g_point;
extern volatile int g_counter;
int hidden_value(void);

int main(void)
{
    struct point local = { 1, 2 };
    g_counter = locals_demo(4, 3, &local) + hidden_value();
    for (;;)
        ;
}
