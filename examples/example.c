/* Squares of an array, and the status that says what happened. */
#include <orvvm.h>
#include <stdio.h>

int main(void) {
    Orv64f x[5] = {1.0, -2.0, 0.5, 3.0, -0.25}, y[5];
    OrvStatus status = orvsSqr_64f_A53(x, y, 5);
    if (status < 0) return 1; /* a bad argument: nothing was done */
    for (int i = 0; i < 5; ++i) printf("%g^2 = %g\n", x[i], y[i]);
    printf("orvvm %s, status %d\n", orvvmGetLibVersion()->versionText, (int)status);
    return y[1] == 4.0 ? 0 : 1;
}
