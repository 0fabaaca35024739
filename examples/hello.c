/* Absolute difference of two small images through the public C interface. */
#include <stdio.h>

#include <orucv.h>

int main(void) {
    Oru8u a[2][4] = {{10, 20, 30, 40}, {50, 60, 70, 80}};
    Oru8u b[2][4] = {{40, 30, 20, 10}, {80, 70, 60, 50}};
    Oru8u diff[2][4];
    OruSize roi = {4, 2};

    const OruLibVersion* v = orucvGetLibVersion();
    OruStatus status = oruiAbsDiff_8u_C1R(&a[0][0], 4, &b[0][0], 4, &diff[0][0], 4, roi);
    if (status != oruStsOk) {
        fprintf(stderr, "oruiAbsDiff_8u_C1R failed: %d\n", status);
        return 1;
    }
    printf("%s %s: |a - b| row 0 = %d %d %d %d\n", v->Name, v->Version, diff[0][0], diff[0][1], diff[0][2],
           diff[0][3]);
    return 0;
}
