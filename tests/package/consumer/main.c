#include <KZBCalculator/kzb_store.h>
#include <KZBCalculator/kzbcalc.h>
#include <string.h>

int main(void) {
    KZB_STORE* store = NULL;
    int value;
    kzb_initialize(&store);
    kzb_put_int("control", "motor_type", 10000, store);
    value = kzb_get_int("control", "motor_type", store);
    kzb_finish(store);
    return value == 10000 && strcmp(kzbcalcVersion(), "2.0.51") == 0 ? 0 : 1;
}
