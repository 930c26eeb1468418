/**
 * @file kzbcalc.h
 * The calculator: opens a KZB file as a plant model and steps it in time.
 *
 * One run: kzbcalcInitialize; options, corrections, temperatures; kzbcalcSetData; initial conditions; for every sample
 * kzbcalcSetTime, kzbcalcSetDisplacement, kzbcalcSetVoltage or kzbcalcSetCurrent, kzbcalcSetSignal, then kzbcalcExecute
 * any number of times, the getters, and kzbcalcUpdate once; kzbcalcTerminate. Nothing enforces this order: a call out
 * of order works on whatever state the model has.
 *
 * Motor types: 10000 permanent-magnet synchronous, 10003 two-phase stepping, 10004 linear solenoid, 10005 linear
 *           synchronous, 10006 induction, 10007 wound-field synchronous, 10008 generic, 10010 to 10012 switched
 *           reluctance with 3, 4, 5 phases.
 * Results:  a status is 0 or a code 1800xx; a getter of a double returns the code as a number (180039.0), to be told
 *           from a value by its size. A null handle, and one whose kzbcalcInitialize failed, gives 180039 where the
 *           call doesn't say otherwise. No call throws or ends the process.
 * Units:    degrees for rotary machines and metres for linear ones, seconds, volts, amperes, kelvin; coil coefficients
 *           in ppm per K, magnet coefficients in percent per K. Phases and indices count from 1.
 */
#ifndef KZBCALCULATOR_KZBCALC_H
#define KZBCALCULATOR_KZBCALC_H

#ifndef KZB_API
#if defined(__GNUC__)
#define KZB_API __attribute__((visibility("default")))
#else
#define KZB_API
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** One open calculator; opaque. */
typedef struct KZB_CALC KZB_CALC;

/* -------------------------------------------------------------------------------------------------------- lifecycle */

/**
 * Opens a KZB file and makes the model that fits its motor type.
 * The handle is written before the file is read: release it with kzbcalcTerminate whatever the status is.
 *
 * @param[in]  path  file name in the host's encoding; null counts as a missing file.
 * @param[in]  calc_mode  1 voltage driven: kzbcalcExecute finds the currents; 2 current driven: the caller gives them
 *                        and kzbcalcGetTorque evaluates.
 * @param[out] out  receives the handle, null only for want of memory; not null.
 * @return     0, or a status.
 *
 * Errors:  180002 file not readable, 180001 motor type not accepted, 180030 calc_mode not 1 or 2, tested in this
 *          order; then 180001 for a generic model whose circuit can't be executed (an element without its type or a
 *          terminal, a source without a port, a number out of range); 180039 for a null `out`.
 * Threads: handles may be opened and used on different threads.
 * Cost:    reads the file's categories and the tables of the chosen application; allocates.
 */
KZB_API int kzbcalcInitialize(const char* path, int calc_mode, KZB_CALC** out);

/**
 * Releases the model, the file's contents and the handle.
 *
 * @param[in]  handle  calculator, also one whose kzbcalcInitialize failed; null is ignored.
 * @return     always 0.
 *
 * Errors:  none.
 * Threads: one handle per thread; handles are independent.
 * Cost:    frees memory; writes "KZBtime.txt" when KZB_OUTPUT_ELAPSED_TIME is set.
 */
KZB_API int kzbcalcTerminate(KZB_CALC* handle);

/**
 * Version of the calculator.
 *
 * @return     "2.0.51", a static text.
 *
 * Errors:  none.
 * Threads: any.
 * Cost:    none.
 */
KZB_API const char* kzbcalcVersion(void);

/**
 * Motor type of the open file.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the code of "motor_type" in category "control", 0 when no file was read.
 *
 * Errors:  none but the null handle.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcCheckMotorType(KZB_CALC* handle);

/**
 * Number of phases of a switched reluctance machine.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     3, 4 or 5 for 10010, 10011, 10012; else a status.
 *
 * Errors:  180039 for every other motor type, the three-phase ones included. Answers also when the mode was refused.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetNumberOfPhases(KZB_CALC* handle);

/* ------------------------------------------------------------------------------------------------- stepping, inputs */

/**
 * Binds the model to the file's data. Comes after the options that influence what is read (skew, connection,
 * resistance, losses, accuracy) and before the first sample.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or 180039.
 *
 * Errors:  180039 a null handle, or no memory: call it again before the first sample. What the file lacks counts as 0.
 * Threads: one handle per thread; handles are independent.
 * Cost:    reads tables from the file; allocates.
 */
KZB_API int kzbcalcSetData(KZB_CALC* handle);

/**
 * Time of the sample; the time before becomes the previous one.
 *
 * @param[in]  time  (s), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180032 negative; nothing is changed then.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetTime(double time, KZB_CALC* handle);

/**
 * Position of the moving part in this sample; the initial displacement is added.
 *
 * @param[in]  displacement  (deg) for rotary machines, (m) for linear ones; any finite value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 for 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetDisplacement(double displacement, KZB_CALC* handle);

/**
 * Terminal voltage of a port. The model sees it at kzbcalcExecute.
 *
 * @param[in]  phase  phase, from 1; 1 to 3 for 10000, 10005, 10006 and 10010, 1 to 4 for 10003, 10007 and 10011, 1
 *                    for 10004, 1 to 5 for 10012.
 * @param[in]  voltage  (V), any finite value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180031 phase out of range, 180039 generic model.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetVoltage(int phase, double voltage, KZB_CALC* handle);

/**
 * Current of a phase, current-driven mode.
 *
 * @param[in]  phase  phase, from 1; 1 to 3 for 10000, 10005, 10006 and 10010, 1 to 4 for 10003, 10007 and 10011, 1
 *                    for 10004, 1 to 5 for 10012.
 * @param[in]  current  (A), any finite value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180031 phase out of range, 180039 generic model.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCurrent(int phase, double current, KZB_CALC* handle);

/**
 * Switch of a port: whether its voltage is applied or it floats.
 *
 * @param[in]  phase  phase, from 1; 1 to 3 for 10000, 10005, 10006 and 10010, 1 to 4 for 10003, 10007 and 10011, 1
 *                    for 10004, 1 to 5 for 10012.
 * @param[in]  signal  0 floats, 1 and above apply the voltage; 1 at start. Below 0 a port of 10003, 10004 and 10010 to
 *                     10012 floats, one of the other types is applied; 10006 is driven whatever its signals are.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180031 phase out of range, 180039 generic model.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetSignal(int phase, int signal, KZB_CALC* handle);

/**
 * One step from the accepted state to the present time. May be called any number of times in a sample;
 * kzbcalcUpdate alone accepts. Two kinds of model keep an integrated state that every call moves on: 10000 with flux
 * integration, by the time since the sample before, and 10006 with the higher-accuracy data, by the step of
 * kzbcalcSetStepSize; their results belong to the state after and before the move. A generic model, 10008, solves
 * nothing before the first kzbcalcUpdate nor while no time has passed, and takes the displacements of its rotating
 * motions for degrees at every call: set them anew before each.
 *
 * @param[in]  handle  calculator; null is ignored.
 * @return     always 0; a failed step shows as unchanged currents.
 *
 * Errors:  none.
 * Threads: one handle per thread; handles are independent.
 * Cost:    table lookups and one solve of a few unknowns, for 10007 up to 200 times and for 10008, with the unknowns of
 * its circuit, up to 50 times; no allocation after the first samples, no lock; writes files only with
 * DORN_KZ_DEBUG_OUTPUT set.
 */
KZB_API int kzbcalcExecute(KZB_CALC* handle);

/**
 * Accepts the step: present values become previous ones.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or 180039 for a null handle.
 *
 * Errors:  none.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcUpdate(KZB_CALC* handle);

/* ------------------------------------------------------------------------------------------------ stepping, results */

/**
 * Current of a phase.
 *
 * @param[in]  phase  phase, from 1; 1 to 3 for 10000, 10005, 10006 and 10010, 1 to 4 for 10003, 10007 and 10011, 1
 *                    for 10004, 1 to 5 for 10012.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (A), or a status as a number.
 *
 * Errors:  180031.0 phase out of range, 180039.0 generic model.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCurrent(int phase, KZB_CALC* handle);

/**
 * Voltage that the last step found in a phase, not the applied one: for 10000 and 10005 that across the winding less
 * its resistive drop, for 10003 (of the accepted step) and 10004 the magnet's, for 10006 and 10007 that of the changing
 * flux.
 *
 * @param[in]  phase  phase, from 1; 1 to 3 for 10000, 10005, 10006 and 10010, 1 to 4 for 10003, 10007 and 10011, 1
 *                    for 10004, 1 to 5 for 10012.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (V), or a status as a number; 0.0 for reluctance machines, and for 10006 outside its phases.
 *
 * Errors:  180031.0 phase out of range, 10006 excepted; 180039.0 generic model.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetVoltage(int phase, KZB_CALC* handle);

/**
 * Voltage induced in a phase by the last step.
 *
 * @param[in]  phase  phase, from 1; 1 to 3 for 10000, 10005, 10006 and 10010, 1 to 4 for 10003, 10007 and 10011, 1
 *                    for 10004, 1 to 5 for 10012.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (V), or a status as a number; 0.0 for 10008, and while no time has passed; for 10000
 *             and 10005 0.0 before the third sample.
 *
 * Errors:  180031.0 phase out of range.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetInducedVoltage(int phase, KZB_CALC* handle);

/**
 * Torque: of the last step when voltage driven, evaluated from the present currents when current driven. For 10006 with
 * the higher-accuracy data every current-driven call moves the integrated state on by the step of kzbcalcSetStepSize.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (N*m), or a status as a number.
 *
 * Errors:  180034.0 for a model without torque, linear ones included.
 * Threads: one handle per thread; handles are independent.
 * Cost:    voltage driven: none; current driven: table lookups, no allocation.
 */
KZB_API double kzbcalcGetTorque(KZB_CALC* handle);

/**
 * Force of a linear machine or a solenoid, evaluated from the present currents in either mode.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (N), or a status as a number.
 *
 * Errors:  180035.0 for a model without force.
 * Threads: one handle per thread; handles are independent.
 * Cost:    table lookups, no allocation.
 */
KZB_API double kzbcalcGetForce(KZB_CALC* handle);

/**
 * Flux linkage of a coil.
 *
 * @param[in]  phase  from 1; 1 to 3 for 10000, 1 to 4 for 10007.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Vs), or a status as a number.
 *
 * Errors:  180031.0 phase out of range, 180039.0 for types other than 10000 and 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCoilFlux(int phase, KZB_CALC* handle);

/**
 * Element of the inductance matrix. For permanent-magnet machines row 1 column 3 gives the element at row 3 column
 * 1. For 10003, 10004 and 10010 to 10012 the call first accepts the step as kzbcalcUpdate does; 10003 gives the last
 * row's element of column 1 whatever the row is, and 0.0 in the other columns.
 *
 * @param[in]  row  from 1, a phase as for kzbcalcGetCurrent.
 * @param[in]  column  likewise.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (H), or a status as a number.
 *
 * Errors:  180031.0 row or column out of range; 180039.0 for 10006, whatever row and column are, and for 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetInductance(int row, int column, KZB_CALC* handle);

/**
 * Inductance of the d axis; a third of it for a delta connection.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (H), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10000 and 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetDAxisInductance(KZB_CALC* handle);

/**
 * Inductance of the q axis; a third of it for a delta connection.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (H), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10000 and 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetQAxisInductance(KZB_CALC* handle);

/**
 * Magnet flux of a phase at the present position, without temperature; for 10003 and 10004 that of the last step, with
 * it. In C++ the call has C++ linkage.
 *
 * @param[in]  phase  from 1 to 3, for 10003 to 4, for 10004 1 alone; tested after the lookup.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Vs), or a status as a number.
 *
 * Errors:  180042.0 phase out of range; 180039.0 for a motor type other than 10000, 10003 to 10005.
 * Threads: one handle per thread; handles are independent.
 * Cost:    one table lookup, no allocation.
 */
#ifdef __cplusplus
} /* C++ linkage: the symbol carries the signature. */
KZB_API double kzbcalcGetMagFlux(int phase, KZB_CALC* handle);
extern "C" {
#elif defined(__GNUC__)
KZB_API double kzbcalcGetMagFlux(int phase, KZB_CALC* handle) __asm__("_Z17kzbcalcGetMagFluxiP8KZB_CALC");
#endif

/**
 * Resistance of a phase: at the temperature of the last step, for 10007 at base temperature; for 10006 with the part
 * that user copper loss adds.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Ohm), or a status as a number.
 *
 * Errors:  180039.0 for 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetResistance(KZB_CALC* handle);

/**
 * Copper loss: sum over the phases of resistance times current squared, one resistance serving all phases; for 10007
 * the field coil counts as a fourth phase. The secondary side of 10006 is not in it: kzbcalcGetSecondaryCopperLoss.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (W), or 180039.0 for a null handle.
 *
 * Errors:  none.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCopperloss(KZB_CALC* handle);

/**
 * Eddy current loss; 0.0 for 10000 when the file gives iron loss as one table.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (W), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10000 and 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetEddyloss(KZB_CALC* handle);

/**
 * Hysteresis loss; 0.0 for 10000 when the file gives iron loss as one table.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (W), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10000 and 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetHysteresisloss(KZB_CALC* handle);

/**
 * Iron loss.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (W), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10000, 10006 to 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetIronloss(KZB_CALC* handle);

/**
 * Copper loss from the user's equivalent resistance table; 0.0 when that is not in use.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (W), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10000 and 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetUserCopperLoss(KZB_CALC* handle);

/**
 * A user-specified output of the file, as of the last step.
 *
 * @param[in]  index  from 1 to kzbcalcGetNumberOfUserSpecifiedParameters.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     the value, or a status as a number.
 *
 * Errors:  180062.0 index out of range; 180039.0 for a motor type other than 10000, 10007, 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetUserSpecifiedParameter(int index, KZB_CALC* handle);

/**
 * Number of user-specified outputs; known after kzbcalcSetData.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the number, or a status.
 *
 * Errors:  180039 for a motor type other than 10000, 10007, 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetNumberOfUserSpecifiedParameters(KZB_CALC* handle);

/* -------------------------------------------------------------------------------- initial conditions and resistance */

/**
 * Current of a phase before the first sample; after kzbcalcSetData.
 *
 * @param[in]  phase  phase, from 1; 1 to 3 for 10000, 10005, 10006 and 10010, 1 to 4 for 10003, 10007 and 10011, 1
 *                    for 10004, 1 to 5 for 10012.
 * @param[in]  current  (A), any finite value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status. A generic model ignores the call with 0.
 *
 * Errors:  180031 phase out of range.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInitialCurrent(int phase, double current, KZB_CALC* handle);

/**
 * Offset that is added to every displacement to come.
 *
 * @param[in]  displacement  (deg), also for 10004; (m) for 10005.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 generic model.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInitialDisplacement(double displacement, KZB_CALC* handle);

/**
 * Time before the first sample.
 *
 * @param[in]  time  (s), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180032 negative; 180039 for 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInitialTime(double time, KZB_CALC* handle);

/**
 * Phase resistance in place of the file's; before kzbcalcSetData.
 *
 * @param[in]  resistance  (Ohm), above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180041 zero or negative; 180039 for 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetResistance(double resistance, KZB_CALC* handle);

/* ------------------------------------------------------------------------------------------------------ corrections */

/**
 * Correction of the flux.
 *
 * @param[in]  factor  times the file's values; above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180017, value not accepted; 180039 for a motor type other than 10000, 10003 to 10005, 10007, 10010 to
 *          10012.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfFlux(double factor, KZB_CALC* handle);

/**
 * Correction of the magnets.
 *
 * @param[in]  factor  times the file's values; above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180020, value not accepted; 180039 for a motor type other than 10000, 10003 to 10005, 10010 to 10012.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfMagnet(double factor, KZB_CALC* handle);

/**
 * Correction of the steel.
 *
 * @param[in]  factor  times the file's values; above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180021, value not accepted; 180039 for a motor type other than 10000, 10003 to 10005, 10007, 10010 to
 *          10012 (10008 before the value is tested).
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfSteel(double factor, KZB_CALC* handle);

/**
 * Correction of the inductances.
 *
 * @param[in]  factor  times the file's values; above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180018, value not accepted; 180039 for a motor type other than 10000, 10003 to 10005, 10010 to 10012.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfInductance(double factor, KZB_CALC* handle);

/**
 * Correction of the torque.
 *
 * @param[in]  factor  times the file's values; above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180019, value not accepted; 180039 for a motor type other than 10000, 10003, 10007, 10010 to 10012 (10008
 *          before the value is tested).
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfTorque(double factor, KZB_CALC* handle);

/**
 * Correction of the force.
 *
 * @param[in]  factor  times the file's values; above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180033, value not accepted; 180039 for a motor type other than 10004, 10005, before the value is tested.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfForce(double factor, KZB_CALC* handle);

/**
 * Turns of the coil that scale flux and inductance; before kzbcalcSetData.
 *
 * @param[in]  turns  number of turns; 0 or more, 0 stands for the file's.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180016, value not accepted; 180039 for a motor type other than 10000, 10003 to 10005, 10010 to 10012.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfCoilTurn1(double turns, KZB_CALC* handle);

/**
 * Turns of the coil that scale the current; before kzbcalcSetData.
 *
 * @param[in]  turns  number of turns; 0 or more, 0 stands for the file's.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180016, value not accepted; 180039 for a motor type other than 10000, 10003 to 10005, 10007, 10010 to
 *          10012.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfCoilTurn2(double turns, KZB_CALC* handle);

/* ----------------------------------------------------------------------------------------------------- temperatures */

/**
 * Switches temperature correction on; the temperature calls work only then.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  none but the null handle.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetTemperatureCorrectionCalc(KZB_CALC* handle);

/**
 * Whether temperature correction is on.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0 or 1, or 180039 for a null handle.
 *
 * Errors:  none.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetTemperatureCorrectionCalc(KZB_CALC* handle);

/**
 * Temperature of the magnets, set.
 *
 * @param[in]  temperature  (K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180043 value not accepted; 180039 for a
 *          motor type other than 10000, 10003 to 10005.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetMagnetTemperature(double temperature, KZB_CALC* handle);

/**
 * Temperature of the magnets, read.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (K), or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for a motor type other than 10000, 10003 to 10005.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetMagnetTemperature(KZB_CALC* handle);

/**
 * Temperature of the magnets that the file's tables belong to, set.
 *
 * @param[in]  temperature  (K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180043 value not accepted; 180039 for a
 *          motor type other than 10000, 10003 to 10005.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetMagnetBaseTemperature(double temperature, KZB_CALC* handle);

/**
 * Temperature of the magnets that the file's tables belong to, read.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (K), or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for a motor type other than 10000, 10003 to 10005.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetMagnetBaseTemperature(KZB_CALC* handle);

/**
 * Temperature coefficient of the magnet flux, set.
 *
 * @param[in]  coefficient  (percent per K), -100 to 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180045 value not accepted; 180039 for a
 *          motor type other than 10000, 10003 to 10005.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetMagFluxTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle);

/**
 * Temperature coefficient of the magnet flux, read.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (percent per K), or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for a motor type other than 10000, 10003 to 10005.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetMagFluxTemperatureCorrectionCoefficient(KZB_CALC* handle);

/**
 * Temperature of the coils, set.
 *
 * @param[in]  temperature  (K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180043 value not accepted; 180039 for a
 *          motor type other than 10000, 10003 to 10007, 10010 to 10012.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCoilTemperature(double temperature, KZB_CALC* handle);

/**
 * Temperature of the coils, read. Answers for every motor type but 10008.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (K), or a status as a number.
 *
 * Errors:  180039.0 for 10008, tested first; 180046.0 temperature correction is off.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCoilTemperature(KZB_CALC* handle);

/**
 * Temperature of the coils that the file's resistance belongs to, set.
 *
 * @param[in]  temperature  (K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180043 value not accepted; 180039 for a
 *          motor type other than 10000, 10003 to 10007, 10010 to 10012.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCoilBaseTemperature(double temperature, KZB_CALC* handle);

/**
 * Temperature of the coils that the file's resistance belongs to, read. Answers for every motor type.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (K), or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for the null handle.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCoilBaseTemperature(KZB_CALC* handle);

/**
 * Temperature coefficient of the coil resistance, set.
 *
 * @param[in]  coefficient  (ppm per K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180044 value not accepted; 180039 for a
 *          motor type other than 10000, 10003 to 10007, 10010 to 10012.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCoilTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle);

/**
 * Temperature coefficient of the coil resistance, read. Answers for every motor type. 10007 gives the factor of
 * the resistance instead.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (ppm per K), the factor for 10007, or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for the null handle.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCoilTemperatureCorrectionCoefficient(KZB_CALC* handle);

/* ----------------------------------------------------------------------------------------------- options and checks */

/**
 * How tables are interpolated.
 *
 * @param[in]  type  0 "Linear", 1 "Cubic", 2 "Spline4", 3 "Spline6", 4 "Spline".
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180047 another number.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInterpolationType(int type, KZB_CALC* handle);

/**
 * Which of the file's model data are used; before kzbcalcSetData.
 *
 * @param[in]  type  0 Ld and Lq, 1 harmonics, 2 flux integration.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180036, 180037, 180067 the file doesn't offer accuracy 0, 1, 2; 180068 it has no "flux_table"; 180038
 *          another number; 180039 for a motor type other than 10000.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetAccuracyType(int type, KZB_CALC* handle);

/**
 * Skew of the two sides, applied by kzbcalcSetData.
 *
 * @param[in]  type_a  0 none, else the kind of skew, as for kzb_apply_skew.
 * @param[in]  type_b  likewise.
 * @param[in]  angle_a  (deg), whole skew angle.
 * @param[in]  angle_b  (deg), likewise.
 * @param[in]  steps_a  number of steps of a stepped skew.
 * @param[in]  steps_b  likewise.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 for a motor type other than 10000.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetSkewParameter(int type_a, int type_b, double angle_a, double angle_b, int steps_a, int steps_b,
                                    KZB_CALC* handle);

/**
 * Connection of the phases; before kzbcalcSetData.
 *
 * @param[in]  type  0 star, 1 delta.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180048 another number; 180039 for a motor type other than 10000, 10005 to 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetConnectionType(int type, KZB_CALC* handle);

/**
 * Switches iron loss on; before kzbcalcSetData. A file of 10006 without the higher-accuracy data is granted it by a
 * "g0" other than 0.0 alone. With DORN_KZ_USE_OLD_IRONLOSS=1 in the environment the older formula serves.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180040 the file has no loss data; 180039 for a motor type other than 10000, 10006 to 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetIronlossCalc(KZB_CALC* handle);

/**
 * Whether the file has iron loss data.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     1 or 0, or a status.
 *
 * Errors:  180039 for a motor type other than 10000, 10006 to 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcCheckIronloss(KZB_CALC* handle);

/**
 * Switches user copper loss on; before kzbcalcSetData.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180065 the file has no such data; 180039 for a motor type other than 10000 and 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetUserCopperlossCalc(KZB_CALC* handle);

/**
 * Whether the file has user copper loss data.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     1 or 0, or a status.
 *
 * Errors:  180039 for a motor type other than 10000 and 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcCheckUserCopperloss(KZB_CALC* handle);

/**
 * Frequency of the pulse width modulation; before kzbcalcSetData. From then on the iron loss of 10007, where it is on,
 * sees the terminal voltages filtered while the machine turns forward, whatever the frequency is.
 *
 * @param[in]  frequency  (Hz), not tested.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  none but the null handle.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetPWMFreq(double frequency, KZB_CALC* handle);

/**
 * DC voltage of the supply, for losses that depend on it; after kzbcalcSetData.
 *
 * @param[in]  voltage  (V), not tested.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180064 no such loss is in use; 180039 for a motor type other than 10000 and 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetDCVoltage(double voltage, KZB_CALC* handle);

/**
 * Carrier frequency of the supply, for losses that depend on it; after kzbcalcSetData.
 *
 * @param[in]  frequency  (Hz), not tested.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180064 no such loss is in use; 180039 for a motor type other than 10000 and 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCarrierFrequency(double frequency, KZB_CALC* handle);

/**
 * Upper limit of a solenoid's displacement, as the file states it; the model doesn't keep to it.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (m), 0.0 when the file states none; or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10004.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetUpperLimitDisplacement(KZB_CALC* handle);

/**
 * Lower limit of a solenoid's displacement, as the file states it; the model doesn't keep to it.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (m), 0.0 when the file states none; or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10004.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetLowerLimitDisplacement(KZB_CALC* handle);

/* ------------------------------------------------------------------------------------------------ induction machine */

/**
 * Whether the file holds the higher-accuracy induction data.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     1 or 0, or a status.
 *
 * Errors:  180039 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcCheckInductionMotorInductanceType(KZB_CALC* handle);

/**
 * Fixed step of the integration with the higher-accuracy data; 0 at start, which keeps the state where it is.
 *
 * @param[in]  step_size  (s), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 for a motor type other than 10006, tested first; 180062 negative.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetStepSize(double step_size, KZB_CALC* handle);

/**
 * Slip frequency, set.
 *
 * @param[in]  frequency  (Hz), any finite value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180061 the file lacks the higher-accuracy data; 180039 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetSlipFrequency(double frequency, KZB_CALC* handle);

/**
 * Slip frequency, read.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Hz), or a status as a number.
 *
 * Errors:  180061.0 the file lacks the higher-accuracy data; 180039.0 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetSlipFrequency(KZB_CALC* handle);

/**
 * Resistance of the secondary side in place of the file's.
 *
 * @param[in]  resistance  (Ohm), above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180042 zero or negative; 180060 not settable with the higher-accuracy data; 180039 for a motor type other
 *          than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetSecondaryResistance(double resistance, KZB_CALC* handle);

/**
 * Resistance of the secondary side at the temperature of the last step.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Ohm), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetSecondaryResistance(KZB_CALC* handle);

/**
 * Copper loss of the primary side.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (W), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetPrimaryCopperLoss(KZB_CALC* handle);

/**
 * Copper loss of the secondary side.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (W), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetSecondaryCopperLoss(KZB_CALC* handle);

/**
 * Flux of the secondary side, d axis.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Vs), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetSecondaryFluxD(KZB_CALC* handle);

/**
 * Flux of the secondary side, q axis.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Vs), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetSecondaryFluxQ(KZB_CALC* handle);

/**
 * Temperature of the secondary side, set.
 *
 * @param[in]  temperature  (K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180043 value not accepted; 180039 for a
 *          motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetSecondaryCoilTemperature(double temperature, KZB_CALC* handle);

/**
 * Temperature of the secondary side, read.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (K), or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetSecondaryCoilTemperature(KZB_CALC* handle);

/**
 * Temperature that the secondary resistance belongs to, set.
 *
 * @param[in]  temperature  (K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180043 value not accepted; 180039 for a
 *          motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetSecondaryCoilBaseTemperature(double temperature, KZB_CALC* handle);

/**
 * Temperature that the secondary resistance belongs to, read.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (K), or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetSecondaryCoilBaseTemperature(KZB_CALC* handle);

/**
 * Temperature coefficient of the secondary resistance, set.
 *
 * @param[in]  coefficient  (ppm per K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180044 value not accepted; 180039 for a
 *          motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetSecondaryCoilTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle);

/**
 * Temperature coefficient of the secondary resistance, read.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (ppm per K), or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for a motor type other than 10006.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetSecondaryCoilTemperatureCorrectionCoefficient(KZB_CALC* handle);

/* ---------------------------------------------------------------------------------------------- wound-field machine */

/**
 * Correction of the field winding's flux.
 *
 * @param[in]  factor  times the file's values; above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180017, value not accepted; 180039 for a motor type other than 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfFieldFlux(double factor, KZB_CALC* handle);

/**
 * Turns of the field winding that scale its current; before kzbcalcSetData.
 *
 * @param[in]  turns  number of turns; 0 or more, 0 stands for the file's.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180016, value not accepted; 180039 for a motor type other than 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfFieldCoilTurn2(double turns, KZB_CALC* handle);

/**
 * Resistance of the field winding in place of the file's.
 *
 * @param[in]  resistance  (Ohm), above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180041 zero or negative; 180039 for a motor type other than 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetFieldCoilResistance(double resistance, KZB_CALC* handle);

/**
 * Resistance of the field winding, at its temperature when temperature correction is on.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Ohm), or a status as a number.
 *
 * Errors:  180039.0 for a motor type other than 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetFieldCoilResistance(KZB_CALC* handle);

/**
 * Temperature of the field winding, set.
 *
 * @param[in]  temperature  (K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180043 value not accepted; 180039 for a
 *          motor type other than 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetFieldCoilTemperature(double temperature, KZB_CALC* handle);

/**
 * Temperature of the field winding, read.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (K), or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for a motor type other than 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetFieldCoilTemperature(KZB_CALC* handle);

/**
 * Temperature that the field winding's resistance belongs to, set.
 *
 * @param[in]  temperature  (K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180043 value not accepted; 180039 for a
 *          motor type other than 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetFieldCoilBaseTemperature(double temperature, KZB_CALC* handle);

/**
 * Temperature that the field winding's resistance belongs to, read.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (K), or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for a motor type other than 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetFieldCoilBaseTemperature(KZB_CALC* handle);

/**
 * Temperature coefficient of the field winding's resistance, set.
 *
 * @param[in]  coefficient  (ppm per K), 0 or more.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before all else; 180044 value not accepted; 180039 for a
 *          motor type other than 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetFieldCoilTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle);

/**
 * Temperature factor of the field winding's resistance: not the coefficient but
 * (temperature - base) * coefficient * 1e-6 + 1.
 *
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     the factor, or a status as a number.
 *
 * Errors:  180046.0 temperature correction is off; 180039.0 for a motor type other than 10007.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetFieldCoilTemperatureCorrectionCoefficient(KZB_CALC* handle);

/* ----------------------------------------------------------------------------------- user inputs of a generic model */

/**
 * Number of user input parameters.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the number, or a status.
 *
 * Errors:  180039 for a motor type other than 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetNumberOfUserInputParameters(KZB_CALC* handle);

/**
 * A user input parameter.
 *
 * @param[in]  index  from 1 to kzbcalcGetNumberOfUserInputParameters.
 * @param[in]  value  any finite value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180065 index out of range, 180064 no loss that depends on it is in use; 180039 for a motor type other than
 *          10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetUserInputParameter(int index, double value, KZB_CALC* handle);

/* ----------------------------------------------------------------------------------------- ports of a generic model */

/**
 * Number of input ports: electrical terminals, then temperatures of the coils, then displacements.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the number, or a status.
 *
 * Errors:  180039 another motor type.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetNumOfInputPortsForGenericModel(KZB_CALC* handle);

/**
 * Number of output ports: currents of coils, resistors, inductors and capacitors, voltage probes, forces or torques,
 * iron loss (one, or none when the file has no data), fluxes of the coils, user specified values.
 *
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the number, or a status; for 10000 and 10007 an unusable one, 8 times 180039 plus the number of user
 *             parameters.
 *
 * Errors:  180039 for a motor type other than 10000, 10007, 10008.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetNumOfOutputPortsForGenericModel(KZB_CALC* handle);

/**
 * Labels of the input ports, in port order.
 *
 * @param[out] labels  array of kzbcalcGetNumOfInputPortsForGenericModel buffers of 128 bytes each; a null buffer is
 *                     passed over.
 * @param[in]  size  bytes of all buffers together.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type; 180063 size below 128 times the number of ports, or a null array.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetInputLabelsForGenericModel(char** labels, int size, KZB_CALC* handle);

/**
 * Labels of the output ports, in port order.
 *
 * @param[out] labels  array of kzbcalcGetNumOfOutputPortsForGenericModel buffers of 128 bytes each; a null buffer is
 *                     passed over.
 * @param[in]  size  bytes of all buffers together.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type; 180063 size below 128 times the number of ports, or a null array.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetOutputLabelsForGenericModel(char** labels, int size, KZB_CALC* handle);

/* ---------------------------------------------------------------------------------------- arrays of a generic model */

/**
 * Inputs of a sample, in port order: volts or amperes, temperatures, displacements, to which the initial ones are
 * added. The status of a refused temperature is dropped.
 *
 * @param[in]  values  array of [count]; null changes nothing.
 * @param[in]  count  kzbcalcGetNumOfInputPortsForGenericModel; with another number nothing happens.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInputValuesForGenericModel(const double* values, int count, KZB_CALC* handle);

/**
 * Outputs of a sample, in port order; a value that can't be told is its status as a number.
 *
 * @param[out] values  array of [count].
 * @param[in]  count  kzbcalcGetNumOfOutputPortsForGenericModel.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type; 180063 another count, or a null array.
 * Threads: one handle per thread; handles are independent.
 * Cost:    one table lookup per force and user specified value; no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetOutputValuesForGenericModel(double* values, int count, KZB_CALC* handle);

/**
 * Switches: keep table values, temperature correction (1 switches it on), apply correction factors, apply temperature
 * data, set the interpolation, and its type, 1 to 4 (0 can't be chosen here). A 0 changes nothing.
 *
 * @param[in]  values  array of 6.
 * @param[in]  count  6.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type; 180062 another count, or a null array.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetParametersForGenericModel(const int* values, int count, KZB_CALC* handle);

/**
 * Types of the power supplies (1 voltage, 2 current), then, unless table values are kept, coil resistances (Ohm),
 * resistances (Ohm), inductances (H) and capacitances (F); values of 0 or below are passed over.
 *
 * @param[in]  supply_types  array of [count1].
 * @param[in]  count1  up to the number of power supplies.
 * @param[in]  coil_resistances  array of [count2].
 * @param[in]  count2  up to the number of coils.
 * @param[in]  resistances  array of [count3].
 * @param[in]  count3  up to the number of resistors.
 * @param[in]  inductances  array of [count4].
 * @param[in]  count4  up to the number of inductors.
 * @param[in]  capacitances  array of [count5].
 * @param[in]  count5  up to the number of capacitors.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type; 180062 a count too large, tested as its group is reached: groups before it have
 *          been set.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetTableValuesForGenericModel(const int* supply_types, int count1, const double* coil_resistances,
                                                 int count2, const double* resistances, int count3,
                                                 const double* inductances, int count4, const double* capacitances,
                                                 int count5, KZB_CALC* handle);

/**
 * Correction factors, when kzbcalcSetParametersForGenericModel asked for them, and temperature data, likewise. Factors
 * of 0 or below are passed over, those of the forces excepted.
 *
 * @param[in]  flux  array of [count1], per coil.
 * @param[in]  count1  up to the number of coils.
 * @param[in]  force  array of [count2], per force table.
 * @param[in]  count2  up to the number of force tables.
 * @param[in]  user  array of [count3], per user parameter; those beyond the number of user inputs are passed over.
 * @param[in]  count3  up to the number of user parameters.
 * @param[in]  turns  array of [count4], per coil.
 * @param[in]  count4  up to the number of coils.
 * @param[in]  base_temperature  (K), array of [count5], per coil.
 * @param[in]  count5  up to the number of coils.
 * @param[in]  temperature_coefficient  (ppm per K), array of [count6], per coil.
 * @param[in]  count6  up to the number of coils.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type; 180062 a count too large, tested as its group is reached (forces, user
 *          parameters, coils, temperatures): groups before it have been set.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionFactorsForGenericModel(const double* flux, int count1, const double* force, int count2,
                                                       const double* user, int count3, const double* turns, int count4,
                                                       const double* base_temperature, int count5,
                                                       const double* temperature_coefficient, int count6,
                                                       KZB_CALC* handle);

/**
 * Initial positions and currents. Positions are taken as they are, without conversion, the rotating motions from one
 * array and the others from the other, in the order of the motions.
 *
 * @param[in]  rotary_positions  array of [count1].
 * @param[in]  count1  with count2 up to the number of motions.
 * @param[in]  linear_positions  array of [count2].
 * @param[in]  count2  see count1.
 * @param[in]  coil_currents  (A), array of [count3].
 * @param[in]  count3  up to the number of coils.
 * @param[in]  resistor_currents  (A), array of [count4].
 * @param[in]  count4  up to the number of resistors.
 * @param[in]  inductor_currents  (A), array of [count5].
 * @param[in]  count5  up to the number of inductors.
 * @param[in]  capacitor_currents  (A), array of [count6].
 * @param[in]  count6  up to the number of capacitors.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type; 180062 a count too large: nothing is set.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInitialValuesForGenericModel(const double* rotary_positions, int count1,
                                                   const double* linear_positions, int count2,
                                                   const double* coil_currents, int count3,
                                                   const double* resistor_currents, int count4,
                                                   const double* inductor_currents, int count5,
                                                   const double* capacitor_currents, int count6, KZB_CALC* handle);

/* -------------------------------------------------------------------------------------- settings of a generic model */

/**
 * Initial displacement of a motion, added to every incoming one.
 *
 * @param[in]  motion_id  from 1 to the number of motions.
 * @param[in]  position  in the unit of the displacement.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180055 no such motion.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInitialPositionForGenericModel(int motion_id, double position, KZB_CALC* handle);

/**
 * Initial current of a coil.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  current  (A), any finite value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180039 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInitialCoilCurrentForGenericModel(int coil_id, double current, KZB_CALC* handle);

/**
 * Initial current of a capacitor.
 *
 * @param[in]  capacitor_id  from 1 to the number of capacitors.
 * @param[in]  current  (A), any finite value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180051 no such capacitor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInitialCapacitorCurrentForGenericModel(int capacitor_id, double current, KZB_CALC* handle);

/**
 * Initial current of a resistor.
 *
 * @param[in]  resistor_id  from 1 to the number of resistors.
 * @param[in]  current  (A), any finite value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180052 no such resistor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInitialResistorCurrentForGenericModel(int resistor_id, double current, KZB_CALC* handle);

/**
 * Initial current of an inductor.
 *
 * @param[in]  inductor_id  from 1 to the number of inductors.
 * @param[in]  current  (A), any finite value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180050 no such inductor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInitialInductorCurrentForGenericModel(int inductor_id, double current, KZB_CALC* handle);

/**
 * Makes a power supply a voltage or a current source.
 *
 * @param[in]  supply_id  from 1 to the number of power supplies.
 * @param[in]  type  1 current source; any other number voltage source. kzbcalcGetPowerSupplyTypeForGenericModel answers
 *                   the other way round.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180054 no such power supply.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetPowerSupplyTypeForGenericModel(int supply_id, int type, KZB_CALC* handle);

/**
 * Resistance of a coil at its base temperature.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  resistance  (Ohm), above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180041 value not accepted; 180049 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCoilResistanceForGenericModel(int coil_id, double resistance, KZB_CALC* handle);

/**
 * Resistance of a resistor.
 *
 * @param[in]  resistor_id  from 1 to the number of resistors.
 * @param[in]  resistance  (Ohm), above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180041 value not accepted; 180052 no such resistor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetResistanceForGenericModel(int resistor_id, double resistance, KZB_CALC* handle);

/**
 * Capacitance of a capacitor.
 *
 * @param[in]  capacitor_id  from 1 to the number of capacitors.
 * @param[in]  capacitance  (F), above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180058 value not accepted; 180051 no such capacitor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCapacitanceForGenericModel(int capacitor_id, double capacitance, KZB_CALC* handle);

/**
 * Inductance of an inductor.
 *
 * @param[in]  inductor_id  from 1 to the number of inductors.
 * @param[in]  inductance  (H), above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180059 value not accepted; 180050 no such inductor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetInductanceForGenericModel(int inductor_id, double inductance, KZB_CALC* handle);

/**
 * Temperature that a coil's resistance belongs to.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  temperature  (K), 0 or more; 0.0 leaves it as it is.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180043 value not accepted; 180049 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCoilBaseTemperatureForGenericModel(int coil_id, double temperature, KZB_CALC* handle);

/**
 * Temperature coefficient of a coil's resistance.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  coefficient  (ppm per K), 0 or more; 0.0 leaves it as it is.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180044 value not accepted; 180049 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCoilTemperatureCorrectionCoefficientForGenericModel(int coil_id, double coefficient,
                                                                          KZB_CALC* handle);

/**
 * Factor on a coil's flux.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  factor  above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180017 value not accepted; 180049 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfFluxForGenericModel(int coil_id, double factor, KZB_CALC* handle);

/**
 * Turns of a coil; its flux and inductances scale with their ratio to the file's turns.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  turns  0 or more; 0.0 leaves them as they are.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180016 value not accepted; 180049 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfCoilTurn2ForGenericModel(int coil_id, double turns, KZB_CALC* handle);

/**
 * Factor on a user specified value; acts on a file of coil sets.
 *
 * @param[in]  parameter_id  from 1 to the number of user parameters.
 * @param[in]  factor  above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180016 value not accepted; 180064 no such user parameter.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfUserSpecifiedParameterForGenericModel(int parameter_id, double factor,
                                                                        KZB_CALC* handle);

/**
 * Factor on a force or torque; acts on a file of coil sets.
 *
 * @param[in]  force_id  from 1 to the number of force tables.
 * @param[in]  factor  above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180019 value not accepted; 180057 no such force table.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCorrectionOfForceForGenericModel(int force_id, double factor, KZB_CALC* handle);

/* ---------------------------------------------------------------------------------------- sample of a generic model */

/**
 * Displacement of a motion; the initial one is added. kzbcalcExecute turns that of a rotating motion into radians in
 * place: set it anew before each.
 *
 * @param[in]  motion_id  from 1 to the number of motions.
 * @param[in]  displacement  degrees, or the linear unit of the file.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180055 no such motion.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetDisplacementForGenericModel(int motion_id, double displacement, KZB_CALC* handle);

/**
 * Voltage or current of a power supply.
 *
 * @param[in]  supply_id  from 1 to the number of power supplies.
 * @param[in]  value  (V) or (A), by the supply's type.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180054 no such power supply.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetPowerSupplyForGenericModel(int supply_id, double value, KZB_CALC* handle);

/**
 * Switch of a power supply.
 *
 * @param[in]  supply_id  from 1 to the number of power supplies.
 * @param[in]  on  1 on; any other number off: a voltage source floats, a current source keeps its last value.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180039 another motor type (tested first); 180054 no such power supply.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetPowerSupplySwitchForGenericModel(int supply_id, int on, KZB_CALC* handle);

/**
 * Temperature of a coil.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  temperature  (K), above 0.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     0, or a status.
 *
 * Errors:  180046 temperature correction is off, tested before the motor type; 180039 another motor type; 180043 value
 *          not accepted; 180049 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcSetCoilTemperatureForGenericModel(int coil_id, double temperature, KZB_CALC* handle);

/* --------------------------------------------------------------------------------------- results of a generic model */

/**
 * Resistance of a coil at its temperature.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Ohm), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180049.0 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCoilResistanceForGenericModel(int coil_id, KZB_CALC* handle);

/**
 * Temperature of a coil.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (K), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180049.0 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCoilTemperatureForGenericModel(int coil_id, KZB_CALC* handle);

/**
 * Temperature that a coil's resistance belongs to.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (K), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180049.0 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCoilBaseTemperatureForGenericModel(int coil_id, KZB_CALC* handle);

/**
 * Temperature coefficient of a coil's resistance.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (ppm per K), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180049.0 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCoilTemperatureCorrectionCoefficientForGenericModel(int coil_id, KZB_CALC* handle);

/**
 * Factor on a coil's flux.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     the factor, or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180049.0 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCorrectionOfFluxForGenericModel(int coil_id, KZB_CALC* handle);

/**
 * Turns of a coil.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     the turns, or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180049.0 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCorrectionOfCoilTurn2ForGenericModel(int coil_id, KZB_CALC* handle);

/**
 * Current of a coil, positive from the first to the second terminal.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (A), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180049.0 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCoilCurrentForGenericModel(int coil_id, KZB_CALC* handle);

/**
 * Flux linkage of a coil.
 *
 * @param[in]  coil_id  from 1 to the number of coils.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Vs), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180049.0 no such coil.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCoilFluxForGenericModel(int coil_id, KZB_CALC* handle);

/**
 * Resistance of a resistor.
 *
 * @param[in]  resistor_id  from 1 to the number of resistors.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (Ohm), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180052.0 no such resistor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetResistanceForGenericModel(int resistor_id, KZB_CALC* handle);

/**
 * Current of a resistor, positive from the first to the second terminal.
 *
 * @param[in]  resistor_id  from 1 to the number of resistors.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (A), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180052.0 no such resistor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetResistorCurrentForGenericModel(int resistor_id, KZB_CALC* handle);

/**
 * Inductance of an inductor.
 *
 * @param[in]  inductor_id  from 1 to the number of inductors.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (H), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180050.0 no such inductor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetInductanceForGenericModel(int inductor_id, KZB_CALC* handle);

/**
 * Current of an inductor, positive from the first to the second terminal.
 *
 * @param[in]  inductor_id  from 1 to the number of inductors.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (A), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180050.0 no such inductor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetInductorCurrentForGenericModel(int inductor_id, KZB_CALC* handle);

/**
 * Capacitance of a capacitor.
 *
 * @param[in]  capacitor_id  from 1 to the number of capacitors.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (F), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180051.0 no such capacitor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCapacitanceForGenericModel(int capacitor_id, KZB_CALC* handle);

/**
 * Current of a capacitor, positive from the first to the second terminal.
 *
 * @param[in]  capacitor_id  from 1 to the number of capacitors.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (A), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180051.0 no such capacitor.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCapacitorCurrentForGenericModel(int capacitor_id, KZB_CALC* handle);

/**
 * Potential of a voltage probe's first terminal.
 *
 * @param[in]  probe_id  from 1 to the number of voltage probes.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (V), or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180053.0 no such voltage probe.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetVoltageProbeValueForGenericModel(int probe_id, KZB_CALC* handle);

/**
 * Force or torque of a table, looked up at the axes that the last kzbcalcExecute left.
 *
 * @param[in]  force_id  from 1 to the number of force tables.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     (N) or (N*m), 0.0 when no table has this id; or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180057.0 no such force table.
 * Threads: one handle per thread; handles are independent.
 * Cost:    one table lookup; no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetForceForGenericModel(int force_id, KZB_CALC* handle);

/**
 * Factor on a force or torque.
 *
 * @param[in]  force_id  from 1 to the number of force tables.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     the factor, or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180057.0 no such force table.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetCorrectionOfForceForGenericModel(int force_id, KZB_CALC* handle);

/**
 * Whether a power supply is a voltage source.
 *
 * @param[in]  supply_id  from 1 to the number of power supplies.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     1 voltage source, 0 current source, or a status.
 *
 * Errors:  180039 another motor type; 180054 no such power supply.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetPowerSupplyTypeForGenericModel(int supply_id, KZB_CALC* handle);

/**
 * Upper limit of a motion's displacement, as the file states it; the model doesn't keep to it.
 *
 * @param[in]  motion_id  from 1 to the number of motions.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     degrees, or the linear unit of the file; or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180055.0 no such motion; 180056.0 the motion has no limit.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetUpperLimitDisplacementForGenericModel(int motion_id, KZB_CALC* handle);

/**
 * Lower limit of a motion's displacement: 0.0 for every motion that has limits.
 *
 * @param[in]  motion_id  from 1 to the number of motions.
 * @param[in]  handle  calculator; null gives 180039.0.
 * @return     degrees, or the linear unit of the file; or a status as a number.
 *
 * Errors:  180039.0 another motor type; 180055.0 no such motion; 180056.0 the motion has no limit.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API double kzbcalcGetLowerLimitDisplacementForGenericModel(int motion_id, KZB_CALC* handle);

/**
 * Force table of a motion.
 *
 * @param[in]  motion_id  from 1 to the number of motions.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the table's id, or a status.
 *
 * Errors:  180039 another motor type; 180055 no such motion.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetMotionReferTableIdForGeneric(int motion_id, KZB_CALC* handle);

/* ----------------------------------------------------------------------------------- ids of a generic model by name */

/**
 * Id of the first coil of this name.
 *
 * @param[in]  name  as in the file; an empty or null name matches nothing.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the id, from 1, or a status.
 *
 * Errors:  180039 another motor type; 180049 no such name.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetCoilIdFromNameForGenericModel(const char* name, KZB_CALC* handle);

/**
 * Id of the first inductor of this name.
 *
 * @param[in]  name  as in the file; an empty or null name matches nothing.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the id, from 1, or a status.
 *
 * Errors:  180039 another motor type; 180050 no such name.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetInductorIdFromNameForGenericModel(const char* name, KZB_CALC* handle);

/**
 * Id of the first capacitor of this name.
 *
 * @param[in]  name  as in the file; an empty or null name matches nothing.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the id, from 1, or a status.
 *
 * Errors:  180039 another motor type; 180051 no such name.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetCapacitorIdFromNameForGenericModel(const char* name, KZB_CALC* handle);

/**
 * Id of the first resistor of this name.
 *
 * @param[in]  name  as in the file; an empty or null name matches nothing.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the id, from 1, or a status.
 *
 * Errors:  180039 another motor type; 180052 no such name.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetResistorIdFromNameForGenericModel(const char* name, KZB_CALC* handle);

/**
 * Id of the first voltage probe of this name.
 *
 * @param[in]  name  as in the file; an empty or null name matches nothing.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the id, from 1, or a status.
 *
 * Errors:  180039 another motor type; 180053 no such name.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetVoltageProbeIdFromNameForGenericModel(const char* name, KZB_CALC* handle);

/**
 * Id of the first power supply of this name.
 *
 * @param[in]  name  as in the file; an empty or null name matches nothing.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the id, from 1, or a status.
 *
 * Errors:  180039 another motor type; 180054 no such name.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetPowerSupplyIdFromNameForGenericModel(const char* name, KZB_CALC* handle);

/**
 * Id of the first motion of this name.
 *
 * @param[in]  name  as in the file; an empty or null name matches nothing.
 * @param[in]  handle  calculator; null gives 180039.
 * @return     the id, from 1, or a status.
 *
 * Errors:  180039 another motor type; 180055 no such name.
 * Threads: one handle per thread; handles are independent.
 * Cost:    no allocation, no lock, no file.
 */
KZB_API int kzbcalcGetMotionIdFromNameForGenericModel(const char* name, KZB_CALC* handle);

#ifdef __cplusplus
}
#endif

#endif
