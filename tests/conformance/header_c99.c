/* The public header as a C99 program sees it. */
#include <orvvm.h>
#include <stdio.h>
#include <string.h>

int main(void) {
    const OrvLibraryVersion* v = orvvmGetLibVersion();
    Orv32f a[3] = {1.0f, 2.0f, 3.0f}, b[3] = {0.5f, 0.25f, 0.125f}, c[3];
    Orv64fc z[1] = {{1.0, -2.0}};
    OrvStatus st = orvsAdd_32f_A24(a, b, c, 3);
    if (st != orvStatusOk || c[0] != 1.5f || c[2] != 3.125f) return 1;
    if (orvsConj_64fc_A53(z, z, 1) != orvStatusOk || z[0].im != 2.0) return 1;
    if (orvsAdd_32f_A24(a, b, NULL, 3) != orvStatusNullPointer) return 1;
    if (v == NULL || v->major != 6 || strcmp(v->versionText, "6.1 build 137.36") != 0) return 1;
    printf("%s %s\n", v->fileName, v->versionText);
    return 0;
}
