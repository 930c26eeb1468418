/* A host written in C: one whole run of a permanent-magnet machine through the public headers. */
#include <KZBCalculator/kzb_store.h>
#include <KZBCalculator/kzbcalc.h>
#include <math.h>
#include <string.h>

/* The number of the first check that failed, 0 when all held. */
int c_program(const char* path);

static void constant_table(const char* category, const char* key, double value, KZB_STORE* store) {
    const int sizes[2] = {2, 2};
    int beta = 0;
    int amplitude = 0;
    kzb_create_table(category, key, 2, sizes, store);
    kzb_set_table_axis_value(category, key, 1, 0, -360.0, store);
    kzb_set_table_axis_value(category, key, 1, 1, 360.0, store);
    kzb_set_table_axis_value(category, key, 2, 0, 0.0, store);
    kzb_set_table_axis_value(category, key, 2, 1, 1000.0, store);
    for (beta = 0; beta < 2; ++beta) {
        for (amplitude = 0; amplitude < 2; ++amplitude) {
            const int at[2] = {beta, amplitude};
            kzb_set_table_value(category, key, at, value, store);
        }
    }
}

static void write_model(const char* path) {
    KZB_STORE* store = NULL;
    kzb_initialize(&store);
    kzb_put_int("control", "motor_type", 10000, store);
    kzb_put_int("control", "number_of_poles", 4, store);
    kzb_put_int("control", "accuracy_type", 1, store);
    kzb_put_double("parameter", "RU", 0.5, store);
    kzb_put_double("d_flux", "d_flux", 0.1, store);
    constant_table("dq_inductance", "d_inductance", 0.002, store);
    constant_table("dq_inductance", "q_inductance", 0.002, store);
    kzb_writer(path, store);
    kzb_finish(store);
}

int c_program(const char* path) {
    KZB_CALC* calc = NULL;
    int sample = 0;
    int phase = 0;
    double current = 0.0;
    write_model(path);
    if (strcmp(kzbcalcVersion(), "2.0.51") != 0) {
        return 1;
    }
    if (kzbcalcInitialize(path, 1, &calc) != 0 || kzbcalcSetData(calc) != 0) {
        kzbcalcTerminate(calc);
        return 2;
    }
    for (sample = 0; sample < 3; ++sample) {
        kzbcalcSetTime(0.001 * sample, calc);
        kzbcalcSetDisplacement(0.0, calc);
        for (phase = 1; phase <= 3; ++phase) {
            kzbcalcSetVoltage(phase, phase == 1 ? 10.0 : -5.0, calc);
        }
        kzbcalcExecute(calc);
        current = kzbcalcGetCurrent(1, calc);
        kzbcalcUpdate(calc);
    }
    /* (dt R + L) i = dt v from rest: 0.01 / (0.0005 + 0.002) = 4 A, in one solve. */
    if (fabs(current - 4.0) > 1e-12) {
        kzbcalcTerminate(calc);
        return 3;
    }
    /* The call with C++ linkage, under its own name: sqrt(2/3) * 0.1 Vs at angle 0. */
    if (fabs(kzbcalcGetMagFlux(1, calc) - sqrt(2.0 / 3.0) * 0.1) > 1e-15) {
        kzbcalcTerminate(calc);
        return 4;
    }
    return kzbcalcTerminate(calc) == 0 ? 0 : 5;
}
