/**
 * @file kzb_store.h
 * The model store: reads, queries, edits, transforms and writes KZB files.
 *
 * A store is an ordered list of named categories; each holds four ordered lists of named parameters: int, double,
 * string, table. Names are case-sensitive and shorter than 256 bytes. Table axes count from 1, indices inside an axis
 * from 0; values are row-major, the last axis varies fastest.
 *
 * Handles:  a null handle gives the absent value of the call (0, 0.0, null, 1 where 1 means failure). Null texts and
 *           null arrays are taken as absent names. No call throws or ends the process.
 * Errors:   a failure is the call's own result; some also leave a code (9xxxx, 8xxxx) that kzb_has_error returns and
 *           kzb_reset_error clears. Faults of a single index print to standard error and leave no code.
 * Texts:    a returned text points into the store; it dies with the store or with the next insertion into the same
 *           list. Never free it. It may be handed to any call on the same store. String values read from a file are
 *           Shift_JIS.
 * Threads:  one thread per handle at a time; handles are independent.
 * Cost:     names are found through an index, not by scanning. Queries and repeated lookups of categories do not
 *           allocate; calls that read, insert or transform do, and so do the subcategory calls, which put the name of
 *           their category together.
 */
#ifndef KZBCALCULATOR_KZB_STORE_H
#define KZBCALCULATOR_KZB_STORE_H

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

/** One loaded model; opaque. */
typedef struct KZB_STORE KZB_STORE;

/** A row of the application and information lists. Both texts are static; type is 0 int, 1 double, 2 string. */
typedef struct KZB_INFORMATION {
    const char* first;
    const char* second;
    int type;
} KZB_INFORMATION;

/* ------------------------------------------------------------------------------------------- lifecycle and file */

/**
 * Makes an empty store.
 *
 * @param[out] out  receives the handle, or null when memory ran out; a null pointer is ignored.
 *
 * The handle is released by kzb_finish. Elapsed times of lookups are kept for this store only if the environment
 * variable KZB_OUTPUT_ELAPSED_TIME is set now.
 */
KZB_API void kzb_initialize(KZB_STORE** out);

/**
 * Reads a KZB file, ascii or binary, into the store. Table bodies stay in the file until kzb_set_application.
 *
 * @param[in] path    file; read as text of the host's file names.
 * @param[in] handle  store; categories already there are added to.
 * @return    0, or 1: the file could not be opened (error 90001), its head is wrong (90009), a category name or a
 *            keyword of the binary form has 256 bytes or more (90009), memory ran out, or the end mark is missing. What
 *            was read so far stays. A faulty entry of the ascii form leaves 90005 and reading goes on.
 *
 * A file without the head "$DORN-KZ" is read as one of the older layout, tables included (docs/file-format.md): 1 for
 * a section that cannot be true (told on standard error), more than 1000 entries in `control` (90003) or a section mark
 * that cannot be read (90004). A file without any section reads as an empty one.
 *
 * The environment variable KZB_READING_ASCII, when set, decides the form: a number above 0 is ascii, else binary.
 * A file with `control`/`incomplete` raises the warning 90033. Lines of the ascii form may end in "\r\n".
 * The store loads tables from the file read last: tables of a file read before under another path, or in the other
 * form, that are not loaded by then stay empty placeholders. Load them with kzb_set_application first.
 */
KZB_API int kzb_reader(const char* path, KZB_STORE* handle);

/**
 * Names the file that kzb_finish writes, in binary form. Nothing is written yet.
 *
 * @param[in] path  copied. A table not loaded is written as the placeholder it is: for a faithful copy call
 *                  kzb_set_application("ALL", "", handle) first.
 */
KZB_API void kzb_writer(const char* path, KZB_STORE* handle);

/**
 * Writes the output file if one was named, the statistics if KZB_OUTPUT_ELAPSED_TIME is set (appended to
 * "KZBtime.txt"), and releases the store with everything in it. A file that cannot be written is passed over in
 * silence.
 */
KZB_API void kzb_finish(KZB_STORE* handle);

/**
 * One entry of the lookup statistics.
 *
 * @param[in] index  1 spline calls, 3 linear calls, 5 cubic calls; 6 linear, 7 cubic, 8 spline elapsed; 9 total
 *                   elapsed; 10 spline, 11 linear, 12 cubic gathering; 14 spline, 16 cubic core (all seconds).
 * @return    the entry; 0.0 for an index outside 0..19.
 */
KZB_API double kzb_get_time(KZB_STORE* handle, int index);

/** The version of the store, "19.12.18"; a static text. */
KZB_API const char* kzb_get_filehandler_version(void);

/* -------------------------------------------------------------------------------------------- queries and values */

/** 1 if the category exists, else 0. */
KZB_API int kzb_has_category(const char* category, KZB_STORE* handle);
/** 1 if any of the four lists of the category holds the key, else 0. */
KZB_API int kzb_has_parameter(const char* category, const char* key, KZB_STORE* handle);
/** Number of categories. */
KZB_API int kzb_get_category_num(KZB_STORE* handle);
/** Name of the category at `index` from 0; null outside. */
KZB_API const char* kzb_get_category_name(int index, KZB_STORE* handle);
/** Value of an int parameter; 0 if absent. */
KZB_API int kzb_get_int(const char* category, const char* key, KZB_STORE* handle);
/** Value of a double parameter; 0.0 if absent. */
KZB_API double kzb_get_double(const char* category, const char* key, KZB_STORE* handle);
/** Value of a string parameter, not a copy; null if absent. */
KZB_API const char* kzb_get_string(const char* category, const char* key, KZB_STORE* handle);
/** Number of int parameters in the category; 0 if it is absent. */
KZB_API int kzb_get_int_num(const char* category, KZB_STORE* handle);
/** Number of double parameters in the category; 0 if it is absent. */
KZB_API int kzb_get_double_num(const char* category, KZB_STORE* handle);
/** Number of string parameters in the category; 0 if it is absent. */
KZB_API int kzb_get_string_num(const char* category, KZB_STORE* handle);
/** Number of tables in the category; 0 if it is absent. */
KZB_API int kzb_get_table_num(const char* category, KZB_STORE* handle);
/** Key of the int parameter at `index` from 0; null outside or without the category. */
KZB_API const char* kzb_get_int_keyword(const char* category, int index, KZB_STORE* handle);
/** Key of the double parameter at `index` from 0; null outside or without the category. */
KZB_API const char* kzb_get_double_keyword(const char* category, int index, KZB_STORE* handle);
/** Key of the string parameter at `index` from 0; null outside or without the category. */
KZB_API const char* kzb_get_string_keyword(const char* category, int index, KZB_STORE* handle);
/** Key of the table at `index` from 0; null outside or without the category. */
KZB_API const char* kzb_get_table_keyword(const char* category, int index, KZB_STORE* handle);
/**
 * Sets an int parameter: replaced in its place, or appended; an absent category is created.
 * @return 0; 1 if memory ran out, a text is null or a name has 256 bytes or more (nothing is changed then).
 */
KZB_API int kzb_put_int(const char* category, const char* key, int value, KZB_STORE* handle);
/** Sets a double parameter; as kzb_put_int. */
KZB_API int kzb_put_double(const char* category, const char* key, double value, KZB_STORE* handle);
/** Sets a string parameter, copied; as kzb_put_int. A text not longer than the old one is written into its buffer. */
KZB_API int kzb_put_string(const char* category, const char* key, const char* value, KZB_STORE* handle);

/* -------------------------------------------------------------------------------------------------------- tables */

/**
 * Creates a table with zero values and no grids, or re-creates one in its place; an absent category is created.
 *
 * @param[in] dim    number of axes, from 1.
 * @param[in] sizes  nodes of each axis, array of [dim], each at least 1.
 * @return    0; 1 for a size below 1 ("The num of row is zero.\n" on standard error, the record stays partly made),
 *            for more values than an int counts, for want of memory, a null argument or a name of 256 bytes or more.
 */
KZB_API int kzb_create_table(const char* category, const char* key, int dim, const int* sizes, KZB_STORE* handle);
/** Number of axes; 0 if the table is absent. */
KZB_API int kzb_get_table_dim(const char* category, const char* key, KZB_STORE* handle);
/** Nodes of an axis, `axis` from 1; 0 if the table or the axis is absent. */
KZB_API int kzb_get_table_num_rows(const char* category, const char* key, int axis, KZB_STORE* handle);
/**
 * One node of an axis.
 * @return the node; 0.0 for an axis below 1 or an absent category; 1.7976931348623157e308 with error 90010 for an
 *         invalid key, axis or index and for an axis that was never set.
 */
KZB_API double kzb_get_table_axis_value(const char* category, const char* key, int axis, int index, KZB_STORE* handle);
/** Sets one node of an axis, `axis` from 1, `index` from 0. 0, or 1 for anything absent or out of range. */
KZB_API int kzb_set_table_axis_value(const char* category, const char* key, int axis, int index, double value,
                                     KZB_STORE* handle);
/**
 * One value of a table.
 * @param[in] indices  array of [dim], each from 0.
 * @return    the value; 0.0 if the table is absent; 1.0 for an invalid index ("index is invalid" on standard error).
 */
KZB_API double kzb_get_table_value(const char* category, const char* key, const int* indices, KZB_STORE* handle);
/** Sets one value of a table, `indices` array of [dim]. 0, or 1 for anything absent or out of range. */
KZB_API int kzb_set_table_value(const char* category, const char* key, const int* indices, double value,
                                KZB_STORE* handle);
/** Cyclic flag of an axis from 1: 1 or greater is cyclic; 2147483647 if the table or axis is absent. */
KZB_API int kzb_get_table_cyclic_flag(const char* category, const char* key, int axis, KZB_STORE* handle);
/** Sets the cyclic flag of an axis from 1. 0, or 1 if the table or axis is absent. */
KZB_API int kzb_set_table_cyclic_flag(const char* category, const char* key, int axis, int flag, KZB_STORE* handle);
/**
 * Value of a table between its nodes.
 *
 * @param[in] values  coordinates, array of [dim], in the units of the axes; never changed.
 * @param[in] method  "Linear", "Cubic", "Spline4", "Spline6" or "Spline".
 * @return    the value, on the table's edge where a coordinate lies outside; 1.7976931348623157e308 where no value
 *            could be formed (absent table, unknown method, an axis without nodes).
 *
 * Errors:  80001 below, 80002 above the range of an axis; 90006 table not found (also left by every "Spline" lookup of
 *          two and more axes that stays in range); 90007 no memory; 9999 value above 1e100.
 * Cost:    no allocation up to 5 axes. Cyclic axes are wrapped. With `control`/`use_phase_symmetry` set, certain tables
 *          fold their coordinates. KZBFILEHANDLER_DEBUG_MODE in the environment appends a line to
 *          "KZBFileHandlerDebug.txt"; USE_GENERIC_INTERPOLATION chooses the general path of the schemes.
 */
KZB_API double kzb_get_table_interpolated_value(const char* category, const char* key, const double* values,
                                                const char* method, KZB_STORE* handle);

/* ------------------------------------------------------------------------------------------------- subcategories */
/*
 * A subcategory is a category whose name is made of a path and indices: path "a;b" (split on ";", "," and ":") with
 * indices {0, 3} names the category "a;0;b;3;". `indices` is an array with one number per path element.
 */

/** 1 if the subcategory exists, else 0. */
KZB_API int kzb_has_subcategory(const char* path, const int* indices, KZB_STORE* handle);
/** 1 if any list of the subcategory holds the key, else 0. */
KZB_API int kzb_has_subcategory_parameter(const char* path, const int* indices, const char* key, KZB_STORE* handle);
/** How many different indices the last path element has below the elements before it; its own index is ignored. */
KZB_API int kzb_get_subcategory_num(const char* path, const int* indices, KZB_STORE* handle);
/** How many different names follow the whole path with its indices. */
KZB_API int kzb_get_child_subcategory_num(const char* path, const int* indices, KZB_STORE* handle);
/** The `index`-th of these names, sorted by byte value; empty outside. The next such call overwrites the text. */
KZB_API const char* kzb_get_child_subcategory_name(const char* path, const int* indices, int index, KZB_STORE* handle);
/** Value of an int parameter; 0 if absent. */
KZB_API int kzb_get_subcategory_int(const char* path, const int* indices, const char* key, KZB_STORE* handle);
/** Value of a double parameter; 0.0 if absent. */
KZB_API double kzb_get_subcategory_double(const char* path, const int* indices, const char* key, KZB_STORE* handle);
/** Value of a string parameter; the empty text without the subcategory, null without the key. */
KZB_API const char* kzb_get_subcategory_string(const char* path, const int* indices, const char* key,
                                               KZB_STORE* handle);
/** Sets an int parameter; as kzb_put_int. */
KZB_API int kzb_put_subcategory_int(const char* path, const int* indices, const char* key, int value,
                                    KZB_STORE* handle);
/** Sets a double parameter; as kzb_put_double. */
KZB_API int kzb_put_subcategory_double(const char* path, const int* indices, const char* key, double value,
                                       KZB_STORE* handle);
/** Sets a string parameter; as kzb_put_string. */
KZB_API int kzb_put_subcategory_string(const char* path, const int* indices, const char* key, const char* value,
                                       KZB_STORE* handle);
/** Creates a table; as kzb_create_table. */
KZB_API int kzb_create_subcategory_table(const char* path, const int* indices, const char* key, int dim,
                                         const int* sizes, KZB_STORE* handle);
/** Number of axes; 0 if the table is absent. */
KZB_API int kzb_get_subcategory_table_dim(const char* path, const int* indices, const char* key, KZB_STORE* handle);
/** Nodes of an axis from 1; 0 if the table or the axis is absent. */
KZB_API int kzb_get_subcategory_table_num_rows(const char* path, const int* indices, const char* key, int axis,
                                               KZB_STORE* handle);
/** One node of an axis; as kzb_get_table_axis_value. */
KZB_API double kzb_get_subcategory_table_axis_value(const char* path, const int* indices, const char* key, int axis,
                                                    int index, KZB_STORE* handle);
/** Sets one node of an axis; as kzb_set_table_axis_value. */
KZB_API int kzb_set_subcategory_table_axis_value(const char* path, const int* indices, const char* key, int axis,
                                                 int index, double value, KZB_STORE* handle);
/** One value of a table; as kzb_get_table_value. */
KZB_API double kzb_get_subcategory_table_value(const char* path, const int* indices, const char* key,
                                               const int* table_indices, KZB_STORE* handle);
/** Sets one value of a table; as kzb_set_table_value. */
KZB_API int kzb_set_subcategory_table_value(const char* path, const int* indices, const char* key,
                                            const int* table_indices, double value, KZB_STORE* handle);
/** Cyclic flag of an axis; as kzb_get_table_cyclic_flag. */
KZB_API int kzb_get_subcategory_table_cyclic_flag(const char* path, const int* indices, const char* key, int axis,
                                                  KZB_STORE* handle);
/** Sets the cyclic flag of an axis; as kzb_set_table_cyclic_flag. */
KZB_API int kzb_set_subcategory_table_cyclic_flag(const char* path, const int* indices, const char* key, int axis,
                                                  int flag, KZB_STORE* handle);
/** Value of a table between its nodes; as kzb_get_table_interpolated_value, without phase folding and debug line. */
KZB_API double kzb_get_subcategory_table_interpolated_value(const char* path, const int* indices, const char* key,
                                                            const double* values, const char* method,
                                                            KZB_STORE* handle);

/* ------------------------------------------------------------------------------------------- errors and warnings */

/** The last error code, 0 if none. */
KZB_API int kzb_has_error(KZB_STORE* handle);
/** Sets the error code to 0. */
KZB_API void kzb_reset_error(KZB_STORE* handle);
/** Prints the text of an error code on standard error, followed by ": " and the system's error text. */
KZB_API void kzb_print_error_short_message(int code);
/** The last warning code, 0 if none. */
KZB_API int kzb_has_warning(KZB_STORE* handle);
/** Sets the warning code to 0. */
KZB_API void kzb_reset_warning(KZB_STORE* handle);
/** Prints the text of a warning code on standard output, without a line end. */
KZB_API void kzb_print_warning_short_message(int code);

/* ----------------------------------------------------------------------------------- applications and information */

/**
 * 1 if the file offers the application, else 0.
 * @param[in] motor        "PMSM", "2-PhaseStepping", "LinearSolenoid", "LinearSynchronous", "SR", "IM", "WFSM" or
 *                         "Generic".
 * @param[in] application  for "PMSM": "LdLq", "SimpleHarmonic", "Harmonic" or "FluxIntegralDQTheta"; for "WFSM": "LdLq"
 *                         or "Harmonic"; else any.
 */
KZB_API int kzb_has_application(const char* motor, const char* application, KZB_STORE* handle);
/** How many of the twelve applications the file offers. */
KZB_API int kzb_get_application_num(KZB_STORE* handle);
/** The `index`-th offered application: motor word, application word or null, 0; all zero beyond the last. */
KZB_API KZB_INFORMATION kzb_get_application(KZB_STORE* handle, int index);
/**
 * Selects an application and loads the bodies of the tables that it needs from the file.
 * @param[in] motor        motor word, or "ALL" for every table.
 * @param[in] application  model word; null keeps the earlier one.
 *
 * A file of the older layout has all its tables in memory: a line on standard output says so, and they stay as they
 * are. A file that cannot be opened any more leaves error 90001 and "file reading error" on standard output. A table
 * whose body finds no memory ("memory allocation error" on standard error) stays as it was; a later call loads it.
 */
KZB_API void kzb_set_application(const char* motor, const char* application, KZB_STORE* handle);
/** Number of visible motor information rows. */
KZB_API int kzb_get_motor_information_num(KZB_STORE* handle);
/** The `index`-th visible motor information row: category, key, kind; two empty texts beyond the last. */
KZB_API KZB_INFORMATION kzb_get_motor_information(KZB_STORE* handle, int index);
/** Number of visible basic information rows. */
KZB_API int kzb_get_basic_information_num(KZB_STORE* handle);
/** The `index`-th visible basic information row: category, key, kind; two empty texts beyond the last. */
KZB_API KZB_INFORMATION kzb_get_basic_information(KZB_STORE* handle, int index);

/* ---------------------------------------------------------------------------------------------------- transforms */

/** Makes the d-q-0 no-load flux tables from the phase table; does nothing without FluxIntegralDQTheta. Always 0. */
KZB_API int kzb_make_dq0_from_UVW(KZB_STORE* handle);
/** Makes the d and q current tables from the phase table; does nothing without FluxIntegralDQTheta. Always 0. */
KZB_API int kzb_make_dq0_from_UVW_current(KZB_STORE* handle);
/** Makes the phase no-load flux table from the d-q-0 tables; does nothing without FluxIntegralDQTheta. Always 0. */
KZB_API int kzb_make_UVW_from_dq0(KZB_STORE* handle);
/** Makes the phase current table from the d and q tables; does nothing without FluxIntegralDQTheta. Always 0. */
KZB_API int kzb_make_UVW_from_dq0_current(KZB_STORE* handle);
/** Derives an LdLq model from a Harmonic one. 1 if built, 0 if the file does not allow it. */
KZB_API int kzb_make_LdLq(KZB_STORE* handle);
/**
 * Averages the machine over the slices of two skews, of which only the difference of positions acts.
 *
 * @param[in] type_a   first skew: 0 none, 1 and 2 continuous, 3 stepped.
 * @param[in] type_b   second skew, likewise.
 * @param[in] angle_a  angle of the first skew (mechanical degrees).
 * @param[in] angle_b  angle of the second skew (mechanical degrees).
 * @param[in] steps_a  steps of the first skew where it is stepped.
 * @param[in] steps_b  steps of the second skew where it is stepped.
 * @param[in] method   lookup word, as for kzb_get_table_interpolated_value; null: nothing is done.
 * @return    0 done, 1 not done. The unskewed tables are kept beside the new ones with "_org" behind their keys, and a
 *            second call starts again from them.
 */
KZB_API int kzb_apply_skew(int type_a, int type_b, double angle_a, double angle_b, int steps_a, int steps_b,
                           const char* method, KZB_STORE* handle);
/** Replaces tables of current phases -90 to 90 degrees, half the range, by full ones. 0 done or nothing, 1 failure. */
KZB_API int kzb_expand_table_considering_phase_symmetry(KZB_STORE* handle);

/* ------------------------------------------------------------------------------------------------- measured data */

/**
 * Reads a correction file: measured factors that scale the tables of a permanent-magnet machine while it runs.
 *
 * @param[in] path    text file; docs/measured-files.md has its form. Lines may end in "\r\n".
 * @param[in] handle  store of the model. Tables go to the category `correction`, leakage inductances (H) to
 *                    `parameter`, counts of the blocks read to `information`.
 * @return    0; 1 for a failure or an item of an older form. What was read before a failure stays.
 *
 * A table that the store has already is multiplied by the earlier one, looked up on the grid of the later; outside the
 * earlier one's range the factor is 1.0.
 * Errors:  set to 0 first. 90015 file not opened (also for a null path), 90016 no end marker, 90017 no start marker,
 *          90018 another motor type, 90019 a number is missing (printed on standard error), 90020 to 90022 total flux
 *          beside inductance or magnet flux, 90011 to 90014 an item of an older form or an unknown one, of which the
 *          first is told and reading goes on. Rows or columns below 1 print "The num of row is zero.\n" and skip the
 *          block. Correction tables still in the model file are loaded first; 90001 or 90009 where they cannot be.
 *          Memory that ran out leaves 1 without a code.
 * Threads: one thread per handle.
 * Cost:    one pass over the file; a merge looks every node of the later table up in the earlier one.
 */
KZB_API int kzb_read_correction_file(const char* path, KZB_STORE* handle);

/** Does nothing and returns 1, whatever the arguments: corrections act while the machine runs. */
KZB_API int kzb_apply_correction(const char* path, KZB_STORE* handle);

/**
 * Adds iron loss data as a table: `loss_table`/`iron_loss` for the applications PMSM Harmonic and IM,
 * `ironloss`/`table` with its axes and input ports for Generic.
 *
 * @param[in] path    text file with one point of a full grid per line; docs/measured-files.md has its form. A last
 *                    line without line feed is not read.
 * @param[in] handle  store of the model; a table of that name is replaced.
 * @return    0, or 1 with the store, its error apart, as it was.
 *
 * Errors:  set to 0 first. 90025 the model takes no such table, 90015 file not opened (also for a null path), 90031 a
 *          field is no number, 90023 another number of fields, 90024 no full grid, 90029 a coordinate that is no finite
 *          number, a description with a number that is none, or a grid too large. Generic: 90026 no motion condition,
 *          90027 no coil set of that name, 90028 a coil set without current phase.
 * Threads: one thread per handle.
 * Cost:    two passes over the file, about a second for a million points; memory in proportion to the file.
 */
KZB_API int kzb_add_loss_table(const char* path, KZB_STORE* handle);

/**
 * Adds the equivalent resistance of the copper loss (Ohm) as `equivalent_resistance_table`/`copper_loss`; application
 * PMSM Harmonic alone, any other leaves 90025. All else as kzb_add_loss_table.
 */
KZB_API int kzb_add_equivalent_copper_loss_resistance_table(const char* path, KZB_STORE* handle);

/* ------------------------------------------------------------------------------------- ports of a generic model */

/**
 * Writes an XML document that tells what ports and parameters a generic model offers.
 *
 * @param[in] handle  store; null gives 1.
 * @param[in] path    file name, overwritten; null counts as one that can't be opened.
 * @return    0, or 1.
 *
 * Errors:  not a generic model: 1, no file, no error code; 90032 file not opened. A write that fails is silent.
 * Threads: one thread per handle.
 * Cost:    reads the lists of the file; allocates.
 */
KZB_API int kzb_export_information(KZB_STORE* handle, const char* path);

#ifdef __cplusplus
}
#endif

#endif
