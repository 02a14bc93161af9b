// SPDX-License-Identifier: MIT
// The library for programs in C, and for all that call C: one header, one shared library.
//
// What holds for every function, unless its own comment says otherwise:
//
// Errors. A function that may fail gives 0, or the number of its error, and never raises. Its last
// parameter, which may be NULL, takes an error to be read and given back with tavelor_error_free();
// it is NULL after success. After a failure all other outputs are as they were, but for what
// tavelor_call() tells. A handle that is NULL, or of another kind than the one asked for, is
// TAVELOR_E_OBJECT_REQUIRED; an output or text that is NULL and must not be, or a struct of a size
// that no version has, is TAVELOR_E_INVALID_CALL. Memory that runs out is TAVELOR_E_UNSPECIFIED.
//
// Ownership. What is written to a `tavelor_x **` is the caller's: it is given back by the function
// that is named where the type is. What a function is given it only looks at until it returns; it
// copies what it keeps. A `const char *` that is returned belongs to the handle it came from.
// Handles may be given back in any order: an object keeps its apartment's state, an apartment its
// installation. Each is given back once, and NULL is always fine to give back. To use one after
// that is undefined, as it is to use memory after free().
//
// Threads. An apartment, and all that is made in it (objects, record sets, connections, listeners,
// shops, transactions, reconciliations), is used by the thread that opened it: on another one each
// call is TAVELOR_E_INVALID_CALL and does nothing. Giving back is allowed on any thread; what is
// given back on another one goes at the next call of its own, or with the apartment. After
// tavelor_apartment_close() each call is TAVELOR_E_OBJECT_NOT_SET. Installations, classes, members,
// errors and values belong to no thread; one of them is used by one thread at a time, but for
// installations, classes and members, which any number may share. Several apartments may be open
// on a thread: each call works in that of its object, and an argument that is of another one is
// TAVELOR_E_INVALID_CALL.
//
// Texts are UTF-8. A `const char *` parameter ends with NUL; a text with a size may hold NUL. What
// is given out has a NUL behind it too, but for what points into a record set. A text that is no
// UTF-8 is TAVELOR_E_TYPE_MISMATCH.
//
// Growing. A struct begins with its size, which the caller sets to its sizeof: the library then
// takes and gives what that version had, and fields that were added later are as if 0. Numbers
// of constants and the meaning of what is here never change within one TAVELOR_ABI.
#ifndef TAVELOR_H
#define TAVELOR_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Before what the library exports.
#define TAVELOR_C_API __attribute__((visibility("default")))

/// The version of this interface: the number behind the library's ".so.".
#define TAVELOR_ABI 0

/// 0, or the number of an error.
typedef int32_t tavelor_status;

/// A shop's folder, its settings and databases. tavelor_installation_release().
typedef struct tavelor_installation tavelor_installation;
/// What one thread works with. tavelor_apartment_close().
typedef struct tavelor_apartment tavelor_apartment;
/// A class by name. Never given back.
typedef struct tavelor_class tavelor_class;
/// A member of a class: its slot, looked up once. Never given back.
typedef struct tavelor_member tavelor_member;
/// An object: of a record class, a record set, a connection, or whatever else a member gives.
/// tavelor_object_release().
typedef struct tavelor_object tavelor_object;
/// Who is told of a record set's events. tavelor_listener_remove().
typedef struct tavelor_listener tavelor_listener;
/// The flows of a shop: sales and closings. tavelor_shop_release().
typedef struct tavelor_shop tavelor_shop;
/// Sales and what else is written beside them, as one. tavelor_transaction_release().
typedef struct tavelor_transaction tavelor_transaction;
/// Whether what was sold is what the shop has. tavelor_reconciliation_release().
typedef struct tavelor_reconciliation tavelor_reconciliation;
/// What a check of the records of invoices has found. tavelor_fiscal_check_release().
typedef struct tavelor_fiscal_check tavelor_fiscal_check;
/// What went wrong. tavelor_error_free().
typedef struct tavelor_error tavelor_error;

/// "1.0.0": of the library that runs, which may be newer than the header. Any thread.
TAVELOR_C_API const char* tavelor_version(void);
/// TAVELOR_ABI of the library that runs.
TAVELOR_C_API int32_t tavelor_abi(void);

// ---------------------------------------------------------------------------------------------
// Errors

/// Numbers that callers test for. The small ones are the classic run-time errors, the 3xxx ones the
/// record set's, the negative ones what a database answers; others may come.
enum {
  TAVELOR_OK = 0,
  TAVELOR_E_INVALID_CALL = 5,                 ///< an argument that makes no sense, a refused sale
  TAVELOR_E_OVERFLOW = 6,                     ///< a number that does not fit its type
  TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE = 9,       ///< a position that is not there
  TAVELOR_E_TYPE_MISMATCH = 13,               ///< a value that does not read as the type wanted
  TAVELOR_E_FILE_NOT_FOUND = 53,              ///< a file that is not there
  TAVELOR_E_PATH_ACCESS = 75,                 ///< a file or folder that the system refuses
  TAVELOR_E_OBJECT_NOT_SET = 91,              ///< nothing there yet, or no longer
  TAVELOR_E_INVALID_USE_OF_NULL = 94,         ///< Null where a value is wanted
  TAVELOR_E_OBJECT_REQUIRED = 424,            ///< no handle, or one of another kind
  TAVELOR_E_MEMBER_NOT_FOUND = 438,           ///< a class or member that is not there
  TAVELOR_E_WRONG_NUMBER_OF_ARGUMENTS = 450,  ///< too many arguments or values, or too few
  TAVELOR_E_INVALID_ARGUMENT = 3001,          ///< what a record set does not take
  TAVELOR_E_NO_CURRENT_RECORD = 3021,         ///< no current row
  TAVELOR_E_NOT_ALLOWED_IN_CONTEXT = 3219,    ///< not now: unsaved changes, no open transaction
  TAVELOR_E_IN_TRANSACTION = 3246,            ///< not inside a transaction
  TAVELOR_E_NOT_SUPPORTED = 3251,             ///< what this record set or engine does not do
  TAVELOR_E_ITEM_NOT_FOUND = 3265,            ///< a column that is not there
  TAVELOR_E_OBJECT_INVALID = 3420,            ///< an object that is gone
  TAVELOR_E_WRONG_TYPE = 3421,          ///< a value, or getter, that is not of the column's type
  TAVELOR_E_OBJECT_CLOSED = 3704,       ///< a record set or connection that is closed
  TAVELOR_E_OBJECT_OPEN = 3705,         ///< one that is open already
  TAVELOR_E_INVALID_CONNECTION = 3709,  ///< no open connection
  TAVELOR_E_UNSPECIFIED = -2147467259,  ///< the rest: disk full, file damaged, out of memory
  TAVELOR_E_OPERATION_CANCELED = -2147217842,   ///< a listener has said no
  TAVELOR_E_ROW_NOT_LOCATED = -2147217864,      ///< somebody else has changed or deleted the row
  TAVELOR_E_TABLE_NOT_FOUND = -2147217865,      ///< a table that is not there
  TAVELOR_E_INTEGRITY_VIOLATION = -2147217873,  ///< a key that is there already, a Null refused
  TAVELOR_E_DELETED_ROW = -2147217885,          ///< the current row is deleted
  TAVELOR_E_MULTIPLE_STEP = -2147217887,  ///< a text too long, a number out of range of its column
  TAVELOR_E_SYNTAX = -2147217900,         ///< a statement that does not read
  TAVELOR_E_MISSING_PARAMETER = -2147217904,  ///< a name in a statement that is no column
  TAVELOR_E_BUSY = -2147217843,               ///< locked by somebody else for the whole wait
  TAVELOR_E_TRANSACTION_LOST = -2147168231,   ///< undone by the engine; only a rollback is taken
  TAVELOR_E_TRY_AGAIN = -2147217837,          ///< undone by the engine: run it again
  TAVELOR_E_TIMEOUT = -2147217871,            ///< a statement took longer than it may
  TAVELOR_E_CONNECTION_LOST = -2147217831     ///< the line to the server is gone
};

/// What a program does about an error.
enum {
  TAVELOR_KIND_ARGUMENT = 0,     ///< a call that makes no sense: the program is wrong
  TAVELOR_KIND_VALUE = 1,        ///< a value of the wrong type, too large, too long, or Null
  TAVELOR_KIND_NOT_FOUND = 2,    ///< no such row, column, table, file, class or member
  TAVELOR_KIND_CONFLICT = 3,     ///< somebody else has changed or deleted the row
  TAVELOR_KIND_INTEGRITY = 4,    ///< a key that is there already, or a Null that a table refuses
  TAVELOR_KIND_BUSY = 5,         ///< locked by somebody else: try again
  TAVELOR_KIND_CLOSED = 6,       ///< what is not open, not there yet, or gone
  TAVELOR_KIND_NOT_ALLOWED = 7,  ///< not now, or not with this object
  TAVELOR_KIND_CANCELLED = 8,    ///< a listener or the program has said no
  TAVELOR_KIND_SYNTAX = 9,       ///< a statement that does not read
  TAVELOR_KIND_ENGINE = 10,      ///< the file, the disk, the engine or the line to it
  TAVELOR_KIND_OTHER = 11        ///< a number of an application's own
};

/// As the function returned it; 0 for NULL, as for all that follow, whose texts are "" then.
TAVELOR_C_API int32_t tavelor_error_number(const tavelor_error* error);
/// One of TAVELOR_KIND_...
TAVELOR_C_API int32_t tavelor_error_kind(const tavelor_error* error);
/// The class or part that raised it: "ClsBancos", "Recordset".
TAVELOR_C_API const char* tavelor_error_source(const tavelor_error* error);
/// What went wrong, for people.
TAVELOR_C_API const char* tavelor_error_description(const tavelor_error* error);
/// What it was about (a table, a key) and what helps, one a line.
TAVELOR_C_API const char* tavelor_error_notes(const tavelor_error* error);
/// All of it for a log: source, description, number, notes, and the place in the statement.
TAVELOR_C_API const char* tavelor_error_message(const tavelor_error* error);
/// The statement that failed, or "".
TAVELOR_C_API const char* tavelor_error_statement(const tavelor_error* error);
/// Byte of the fault in the statement, or -1. Line and column, both from 1 and either NULL if not
/// wanted, are 0 then; columns count characters.
TAVELOR_C_API int64_t tavelor_error_place(const tavelor_error* error, int64_t* line,
                                          int64_t* column);
/// The engine's own result code, or 0.
TAVELOR_C_API int32_t tavelor_error_native_code(const tavelor_error* error);
/// How many things are wrong with a sale that was refused; 0 for any other error.
TAVELOR_C_API size_t tavelor_error_fault_count(const tavelor_error* error);
/// One of them, from 0, as a sentence; "" beyond the last. `line` takes its line, from 1, or 0 for
/// the sale as such, `article` the line's code; either may be NULL.
TAVELOR_C_API const char* tavelor_error_fault(const tavelor_error* error, size_t index,
                                              size_t* line, const char** article);
/// Gives it back. Any thread.
TAVELOR_C_API void tavelor_error_free(tavelor_error* error);

// ---------------------------------------------------------------------------------------------
// Values

/// What a value may hold. The names in comments are those of parameters' types.
enum {
  TAVELOR_EMPTY = 0,    ///< nothing was given; reads as "" in text and 0 in a number
  TAVELOR_NULL = 1,     ///< no value in a column
  TAVELOR_BOOLEAN = 2,  ///< Boolean: as.boolean, 0 or 1; anything but 0 is taken as 1
  TAVELOR_INT16 = 3,    ///< Integer: as.int16
  TAVELOR_INT32 = 4,    ///< Long: as.int32
  TAVELOR_SINGLE = 5,   ///< Single: as.single
  TAVELOR_DOUBLE = 6,   ///< Double: as.number
  TAVELOR_MONEY = 7,    ///< Currency: as.money, ten-thousandths
  TAVELOR_DATE = 8,     ///< Date: as.date, days since 1899-12-30, the time as a fraction
  TAVELOR_TEXT = 9,     ///< String: as.text
  TAVELOR_BYTES = 10,   ///< Byte(): as.bytes
  TAVELOR_OBJECT = 11,  ///< Connection, Recordset, and the other classes: as.object
  TAVELOR_INT64 = 12  ///< as.int64; taken, never given: becomes a Long where it fits, else a Double
};

/// The parts of one unit of TAVELOR_MONEY.
#define TAVELOR_MONEY_SCALE 10000

/// One value. The caller makes it, by one of the functions below or field by field, and its bits
/// that are not said are 0. Text and bytes that the caller puts in stay the caller's.
///
/// What the library puts in is the value's own (`owned` is 1): it is given back with
/// tavelor_value_clear(), or by the library where it overwrites the value. An object in it is a
/// handle of its own. To keep text or object longer, take it out and set `owned` to 0: then free
/// it with tavelor_value_clear() of another value that holds it and has `owned` 1.
typedef struct tavelor_value {
  int32_t type;   ///< TAVELOR_EMPTY ... TAVELOR_INT64
  int32_t owned;  ///< whether tavelor_value_clear() has something to free
  union {
    int32_t boolean;
    int16_t int16;
    int32_t int32;
    int64_t int64;
    float single;
    double number;
    int64_t money;
    double date;
    struct {
      const char* data;  ///< may be NULL where the size is 0
      size_t size;       ///< bytes
    } text;
    struct {
      const void* data;
      size_t size;
    } bytes;
    tavelor_object* object;
  } as;
} tavelor_value;

/// Gives back what the value owns, and makes it TAVELOR_EMPTY. Any thread; NULL is fine.
TAVELOR_C_API void tavelor_value_clear(tavelor_value* value);

/// The value as another type, by the classic rules and the apartment's locale ("1.234,5" in Spanish
/// is 1234.5; halves round to even): TAVELOR_BOOLEAN to TAVELOR_TEXT. `out`, which is cleared
/// before, may be `value` itself. Errors: TAVELOR_E_INVALID_USE_OF_NULL, TAVELOR_E_TYPE_MISMATCH
/// for what does not read as the type, TAVELOR_E_OVERFLOW for what does not fit.
TAVELOR_C_API tavelor_status tavelor_value_convert(tavelor_apartment* apartment,
                                                   const tavelor_value* value, int32_t type,
                                                   tavelor_value* out, tavelor_error** error);

/// Reads "-1234.5678", a plain decimal number with a point and at most four decimals, as
/// ten-thousandths, exactly. Any thread. TAVELOR_E_TYPE_MISMATCH for another text,
/// TAVELOR_E_OVERFLOW beyond +-922337203685477.5807.
TAVELOR_C_API tavelor_status tavelor_money_from_text(const char* text, int64_t* money,
                                                     tavelor_error** error);
/// Room for any text of tavelor_money_to_text().
#define TAVELOR_MONEY_TEXT_SIZE 32
/// Writes ten-thousandths as "-1234.5", with as many decimals as it takes, and gives the length;
/// nothing, and 0, for less room than TAVELOR_MONEY_TEXT_SIZE. Any thread.
TAVELOR_C_API size_t tavelor_money_to_text(int64_t money, char* buffer, size_t size);

/// A date as a calendar and a clock show it.
typedef struct tavelor_civil {
  int32_t year;    ///< 100 to 9999
  int32_t month;   ///< from 1
  int32_t day;     ///< from 1
  int32_t hour;    ///< 0 to 23
  int32_t minute;  ///< 0 to 59
  int32_t second;  ///< 0 to 59
} tavelor_civil;
/// The day number. Any thread. TAVELOR_E_INVALID_CALL for parts that are no date.
TAVELOR_C_API tavelor_status tavelor_date_from_civil(const tavelor_civil* civil, double* date,
                                                     tavelor_error** error);
/// To the nearest second. Any thread. TAVELOR_E_OVERFLOW outside the years 100 to 9999.
TAVELOR_C_API tavelor_status tavelor_date_to_civil(double date, tavelor_civil* civil,
                                                   tavelor_error** error);

// ---------------------------------------------------------------------------------------------
// Installations. Any thread.

/// How a new installation is to be. Zeroed but for `size`, it is one of files in Spanish.
typedef struct tavelor_settings {
  size_t size;                  ///< sizeof(tavelor_settings)
  const char* file;             ///< a settings file whose contents come first; NULL for none
  const char* server;           ///< "postgresql://till@db1/shop?sslmode=verify-full": all databases
                                ///< are schemas of that one; NULL for files. Never with a password
  const char* locale;           ///< "es-ES"
  const char* amount_format;    ///< "#,##0.00"
  const char* quantity_format;  ///< "#,##0.00"
  int32_t currency_decimals;    ///< 0 for the default, 2; -1 for none
  int32_t unsynchronised;       ///< 1: a power cut may lose the last transactions, never a file
  int32_t busy_timeout_ms;      ///< how long a write waits for another writer; 0 for the default
  int32_t strict_modes;         ///< 1: IniciaRs refuses words that its class does not know
} tavelor_settings;

/// Makes a working installation in a folder, which is made where it is missing, and opens it.
/// `settings` may be NULL. TAVELOR_E_PATH_ACCESS for a folder that holds one already, which is left
/// alone; TAVELOR_E_INVALID_CALL for settings with which none can work. The settings file comes
/// last: what is left after a failure is no installation, and this may be called again over it.
TAVELOR_C_API tavelor_status tavelor_installation_create(const char* folder,
                                                         const tavelor_settings* settings,
                                                         tavelor_installation** installation,
                                                         tavelor_error** error);
/// Opens one, by its folder or its settings file (".../tavelor.xml"). Databases of an older schema
/// are brought up to date. TAVELOR_E_FILE_NOT_FOUND for a folder that holds none.
TAVELOR_C_API tavelor_status tavelor_installation_open(const char* path,
                                                       tavelor_installation** installation,
                                                       tavelor_error** error);
/// Gives it back; its apartments keep it. Any thread.
TAVELOR_C_API void tavelor_installation_release(tavelor_installation* installation);
/// Full path, as long as the installation is there; NULL for NULL.
TAVELOR_C_API const char* tavelor_installation_folder(const tavelor_installation* installation);
/// Adds tables, columns and indexes of the program's own to a database (1 main, 3 documents, 4
/// historic, 5 import, 0 further), in one transaction: CREATE TABLE, CREATE INDEX and ALTER TABLE
/// .. ADD COLUMN of the dialect. TAVELOR_E_NOT_SUPPORTED for DDL that drops.
TAVELOR_C_API tavelor_status tavelor_installation_add_to_schema(tavelor_installation* installation,
                                                                int32_t selector, const char* ddl,
                                                                tavelor_error** error);

// ---------------------------------------------------------------------------------------------
// Apartments

/// Binds an installation to the calling thread, whose it is from then on.
TAVELOR_C_API tavelor_status tavelor_apartment_open(tavelor_installation* installation,
                                                    tavelor_apartment** apartment,
                                                    tavelor_error** error);
/// Ends it and gives it back: what is not committed is undone, its record sets are closed, and what
/// is still held of it only wants to be given back. By its own thread; another one may do it
/// (a finaliser, say) as long as nothing of it is in use. Not from inside an event or a prompt of
/// its own: that does nothing.
TAVELOR_C_API void tavelor_apartment_close(tavelor_apartment* apartment);

/// The time that classes, flows and statements go by, as a day number: this computer's, to the
/// second.
TAVELOR_C_API tavelor_status tavelor_apartment_now(tavelor_apartment* apartment, double* moment,
                                                   tavelor_error** error);
/// From here on it is always that moment; NULL goes on with this computer's. For tests and
/// examples.
TAVELOR_C_API tavelor_status tavelor_apartment_fix_clock(tavelor_apartment* apartment,
                                                         const double* moment,
                                                         tavelor_error** error);

/// What a class asks of the program's user.
enum {
  TAVELOR_PROMPT_MESSAGE = 1,   ///< show the text and wait until it has been read
  TAVELOR_PROMPT_QUESTION = 2,  ///< set `answer` 1 for yes
  TAVELOR_PROMPT_INPUT = 3,     ///< set `input` to the line that was typed
  TAVELOR_PROMPT_BEEP = 4       ///< make a sound
};
/// One prompt, for as long as its handler runs.
typedef struct tavelor_prompt {
  size_t size;        ///< as the library knows it
  int32_t prompt;     ///< TAVELOR_PROMPT_...
  int32_t severity;   ///< of a message: 0 plain, 1 information, 2 critical
  const char* text;   ///< what is asked or told
  const char* title;  ///< of its box
  int32_t answer;     ///< 0 at first
  const char* input;  ///< NULL at first: an empty line. Read as soon as the handler returns
} tavelor_prompt;
/// Gives 0, or the number of an error that the call which asked is to fail with.
typedef tavelor_status (*tavelor_prompt_handler)(void* user, tavelor_prompt* prompt);
/// Who answers prompts; NULL for nobody: then a question is a No, an input an empty text, and
/// messages are kept. `user` is handed to the handler, and stays the caller's.
TAVELOR_C_API tavelor_status tavelor_apartment_set_prompts(tavelor_apartment* apartment,
                                                           tavelor_prompt_handler handler,
                                                           void* user, tavelor_error** error);
/// How many messages are kept that no handler took: the last 256 at most.
TAVELOR_C_API tavelor_status tavelor_apartment_message_count(tavelor_apartment* apartment,
                                                             size_t* count, tavelor_error** error);
/// Fills `message` with one of them, from 0, the oldest first; its `size` is set by the caller.
/// What it points to is good until the next call with the apartment.
/// TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE beyond the last.
TAVELOR_C_API tavelor_status tavelor_apartment_message(tavelor_apartment* apartment, size_t index,
                                                       tavelor_prompt* message,
                                                       tavelor_error** error);
/// Forgets them.
TAVELOR_C_API tavelor_status tavelor_apartment_clear_messages(tavelor_apartment* apartment,
                                                              tavelor_error** error);

// ---------------------------------------------------------------------------------------------
// Classes and their members: the component table. Any thread; nothing here is given back.

/// How many classes there are: the record classes, then Recordset, Fields, Field, Connection and
/// RecordsetEvents.
TAVELOR_C_API size_t tavelor_class_count(void);
/// One of them, from 0; NULL beyond the last.
TAVELOR_C_API const tavelor_class* tavelor_class_at(size_t index);
/// By name ("ClsBancos", "Tavelor.ClsBancos") or identifier ("{6B1F...}"), without regard to case.
/// TAVELOR_E_MEMBER_NOT_FOUND, with the nearest name.
TAVELOR_C_API tavelor_status tavelor_class_find(const char* name_or_identifier,
                                                const tavelor_class** found, tavelor_error** error);
/// "ClsBancos"; NULL for NULL, as for all that follow.
TAVELOR_C_API const char* tavelor_class_name(const tavelor_class* of);
/// "{6B1F...}".
TAVELOR_C_API const char* tavelor_class_identifier(const tavelor_class* of);
/// The class word, "" for a class without the frame.
TAVELOR_C_API const char* tavelor_class_word(const tavelor_class* of);
/// What the class is for, its comment in the headers; "" where nobody told.
TAVELOR_C_API const char* tavelor_class_documentation(const tavelor_class* of);

/// Its members, in slot order.
TAVELOR_C_API size_t tavelor_class_member_count(const tavelor_class* of);
/// One of them, by its slot from 0; NULL beyond the last.
TAVELOR_C_API const tavelor_member* tavelor_class_member_at(const tavelor_class* of, size_t slot);
/// By name, without regard to case. TAVELOR_E_MEMBER_NOT_FOUND, with the nearest name.
TAVELOR_C_API tavelor_status tavelor_class_find_member(const tavelor_class* of, const char* name,
                                                       const tavelor_member** found,
                                                       tavelor_error** error);

/// "GetIbanBic"; NULL for NULL, as for all that follow.
TAVELOR_C_API const char* tavelor_member_name(const tavelor_member* member);
/// "GetIbanBic(vId As Variant, out sIban As String, out sBic As String, [objCn As Connection])".
TAVELOR_C_API const char* tavelor_member_signature(const tavelor_member* member);
/// What it does, its units and errors: its comment in the headers; "" where nobody told.
TAVELOR_C_API const char* tavelor_member_documentation(const tavelor_member* member);
/// Whether it is a property: read without an argument, and written with one where it takes one.
TAVELOR_C_API int32_t tavelor_member_is_property(const tavelor_member* member);
/// "String", "Variant", "Recordset"...; "" for none.
TAVELOR_C_API const char* tavelor_member_result(const tavelor_member* member);
/// How many parameters it has.
TAVELOR_C_API size_t tavelor_member_parameter_count(const tavelor_member* member);

/// Who writes a parameter.
enum {
  TAVELOR_IN = 0,    ///< the caller
  TAVELOR_OUT = 1,   ///< the member
  TAVELOR_INOUT = 2  ///< both
};
/// One parameter of a member. What it points to never goes.
typedef struct tavelor_parameter {
  size_t size;        ///< sizeof(tavelor_parameter), set by the caller
  const char* name;   ///< "vId"
  const char* type;   ///< "String", "Variant", "Boolean", "Integer", "Long", "Connection"...
  int32_t direction;  ///< TAVELOR_IN, TAVELOR_OUT or TAVELOR_INOUT
  int32_t optional;   ///< 1: may be left out
  tavelor_value
      by_default;  ///< of an optional one; TAVELOR_EMPTY for its type's zero, "" or nothing
} tavelor_parameter;
/// Fills `parameter` with one, from 0. TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE beyond the last.
TAVELOR_C_API tavelor_status tavelor_member_parameter(const tavelor_member* member, size_t index,
                                                      tavelor_parameter* parameter,
                                                      tavelor_error** error);

// ---------------------------------------------------------------------------------------------
// Objects and calls

/// A new object of a class. A Field or Fields made so is of no record set, and refuses to work.
TAVELOR_C_API tavelor_status tavelor_object_new(tavelor_apartment* apartment,
                                                const tavelor_class* of, tavelor_object** object,
                                                tavelor_error** error);
/// Another hold on the same handle, to be given back too. Gives the handle. Any thread.
TAVELOR_C_API tavelor_object* tavelor_object_retain(tavelor_object* object);
/// Gives a hold back; with the last one the handle goes, and with the last handle the object: a
/// record set closes, and a connection undoes what is not committed. Any thread.
TAVELOR_C_API void tavelor_object_release(tavelor_object* object);

/// What an object is, apart from its class.
enum {
  TAVELOR_IS_OBJECT = 0,     ///< of a class of the table, or another that a member gave
  TAVELOR_IS_RECORDSET = 1,  ///< for tavelor_recordset_...
  TAVELOR_IS_CONNECTION = 2  ///< for tavelor_connection_...
};
/// One of these; -1 for NULL. Any thread.
TAVELOR_C_API int32_t tavelor_object_kind(const tavelor_object* object);
/// Its class; NULL for an object of none, and for NULL. Any thread.
TAVELOR_C_API const tavelor_class* tavelor_object_class(const tavelor_object* object);
/// Whether two handles are of the same object. Any thread.
TAVELOR_C_API int32_t tavelor_object_is_same(const tavelor_object* a, const tavelor_object* b);

/// Calls a member by its slot. `arguments` are `count` values in the order of the parameters;
/// trailing ones may be missing where they are optional or outputs, and one that is TAVELOR_EMPTY
/// takes its default. A parameter by reference is written back to its argument, if it is there,
/// whose old value is cleared; what the member wrote before it failed is there too. `result` is
/// written, not cleared before; NULL where it is not wanted. A list of values is one text, a line
/// an entry.
///
/// Errors: TAVELOR_E_WRONG_NUMBER_OF_ARGUMENTS, TAVELOR_E_TYPE_MISMATCH for an argument of the
/// wrong type and for a member of another class, and whatever the member raises.
TAVELOR_C_API tavelor_status tavelor_call(tavelor_object* object, const tavelor_member* member,
                                          tavelor_value* arguments, size_t count,
                                          tavelor_value* result, tavelor_error** error);
/// The same by its name, looked up each time, without regard to case.
TAVELOR_C_API tavelor_status tavelor_call_by_name(tavelor_object* object, const char* name,
                                                  tavelor_value* arguments, size_t count,
                                                  tavelor_value* result, tavelor_error** error);
/// The rows that a record class has opened with IniciaRs: "Primary", or another of its data
/// members. TAVELOR_E_TYPE_MISMATCH for an object that is of no record class, and what the class
/// raises for a name that it does not have.
TAVELOR_C_API tavelor_status tavelor_object_rows(tavelor_object* object, const char* data_member,
                                                 tavelor_object** recordset, tavelor_error** error);

// ---------------------------------------------------------------------------------------------
// Connections. What is not here is a member of the class Connection.
//
// A statement, filter or search may hold values as question marks: each one that stands outside of
// quotes, brackets and # signs is the next of `values`, written as a value of the dialect, so that
// a text from outside can never change what the statement does. With `count` 0 it is taken as it
// is. TAVELOR_E_WRONG_NUMBER_OF_ARGUMENTS unless there are as many, TAVELOR_E_TYPE_MISMATCH for
// bytes and objects.

/// An open connection of its own to a database: 1 main, 3 documents, 4 historic, 5 import, 0
/// further. TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE for another selector.
TAVELOR_C_API tavelor_status tavelor_connection_open(tavelor_apartment* apartment, int32_t selector,
                                                     tavelor_object** connection,
                                                     tavelor_error** error);
/// Runs a statement that gives no rows; `written`, which may be NULL, takes how many it wrote.
/// After an error nothing of the statement is left.
TAVELOR_C_API tavelor_status tavelor_connection_execute(tavelor_object* connection,
                                                        const char* statement,
                                                        const tavelor_value* values, size_t count,
                                                        int64_t* written, tavelor_error** error);
/// Begins a transaction, or one inside the one that is open.
TAVELOR_C_API tavelor_status tavelor_connection_begin(tavelor_object* connection,
                                                      tavelor_error** error);
/// Ends the innermost transaction; the outermost is stored. TAVELOR_E_NOT_ALLOWED_IN_CONTEXT when
/// none is open. When the outermost one fails nothing of it is left, and none is open.
TAVELOR_C_API tavelor_status tavelor_connection_commit(tavelor_object* connection,
                                                       tavelor_error** error);
/// Undoes the innermost transaction. TAVELOR_E_NOT_ALLOWED_IN_CONTEXT when none is open; after an
/// outermost commit that failed it does nothing, once.
TAVELOR_C_API tavelor_status tavelor_connection_rollback(tavelor_object* connection,
                                                         tavelor_error** error);
/// Open levels, 0 without a transaction.
TAVELOR_C_API tavelor_status tavelor_connection_level(tavelor_object* connection, int32_t* level,
                                                      tavelor_error** error);

// ---------------------------------------------------------------------------------------------
// Record sets: the rows of a statement, fetched whole, with a cursor on them. Changes stay in the
// set until a batch writes them. What is not here is a member of the class Recordset.
//
// Errors of all: TAVELOR_E_OBJECT_CLOSED for a closed set; of those that need a current row
// TAVELOR_E_NO_CURRENT_RECORD, or TAVELOR_E_DELETED_ROW; of those that take a column, from 0,
// TAVELOR_E_ITEM_NOT_FOUND. A set works on when its connection's handle has been given back.

/// When changes are written.
enum {
  TAVELOR_LOCK_READ_ONLY = 1,   ///< never: changes are refused
  TAVELOR_LOCK_OPTIMISTIC = 3,  ///< at once, one row at a time
  TAVELOR_LOCK_BATCH = 4        ///< by tavelor_recordset_update_batch()
};
/// Runs a SELECT over a connection and fetches all its rows; the cursor stands on the first.
/// Values as the section on connections tells.
TAVELOR_C_API tavelor_status tavelor_recordset_open(tavelor_object* connection,
                                                    const char* statement,
                                                    const tavelor_value* values, size_t count,
                                                    int32_t lock, tavelor_object** recordset,
                                                    tavelor_error** error);

/// The type of a column.
enum {
  TAVELOR_COLUMN_INT16 = 2,
  TAVELOR_COLUMN_INT32 = 3,
  TAVELOR_COLUMN_SINGLE = 4,
  TAVELOR_COLUMN_DOUBLE = 5,
  TAVELOR_COLUMN_MONEY = 6,
  TAVELOR_COLUMN_DATE = 7,
  TAVELOR_COLUMN_BOOLEAN = 11,
  TAVELOR_COLUMN_BYTE = 17,
  TAVELOR_COLUMN_TEXT = 202,
  TAVELOR_COLUMN_MEMO = 203,
  TAVELOR_COLUMN_BYTES = 205
};
/// What a set without a database is to have.
typedef struct tavelor_column_wish {
  size_t size;       ///< sizeof(tavelor_column_wish)
  const char* name;  ///< of the column; no two the same
  int32_t type;      ///< TAVELOR_COLUMN_...
  int32_t width;     ///< characters of a text; 0 for as many as one likes
} tavelor_column_wish;
/// An open set without a database and without rows. TAVELOR_E_INVALID_CONNECTION without columns.
TAVELOR_C_API tavelor_status tavelor_recordset_new(tavelor_apartment* apartment,
                                                   const tavelor_column_wish* columns, size_t count,
                                                   tavelor_object** recordset,
                                                   tavelor_error** error);
/// Closes it; changes that are not written are lost. The handle stays.
TAVELOR_C_API tavelor_status tavelor_recordset_close(tavelor_object* recordset,
                                                     tavelor_error** error);
/// Runs the statement again; filter and order stay, changes that are not written are lost, and
/// bookmarks lose their meaning. After an error the old rows are still there.
TAVELOR_C_API tavelor_status tavelor_recordset_requery(tavelor_object* recordset,
                                                       tavelor_error** error);
/// Another cursor on the same rows and changes, with a filter and an order of its own; `read_only`
/// 1 for one that refuses changes.
TAVELOR_C_API tavelor_status tavelor_recordset_clone(tavelor_object* recordset, int32_t read_only,
                                                     tavelor_object** clone, tavelor_error** error);
/// Takes whether it is open: closed is no error here.
TAVELOR_C_API tavelor_status tavelor_recordset_is_open(tavelor_object* recordset, int32_t* open,
                                                       tavelor_error** error);

/// One column. What it points to is good until the set is closed or opened again.
typedef struct tavelor_column {
  size_t size;             ///< sizeof(tavelor_column), set by the caller
  const char* name;        ///< as the statement gave it
  const char* base_table;  ///< that it is stored in; "" for one that is computed
  int32_t type;            ///< TAVELOR_COLUMN_...; others may come
  int32_t width;           ///< characters of a text; bytes of the other types
  int32_t precision;       ///< digits of a number, 255 for what is none
  int32_t attributes;      ///< bits: 4 may be written, 32 takes Null, 64 may hold Null, 128 is long
} tavelor_column;
/// How many columns there are.
TAVELOR_C_API tavelor_status tavelor_recordset_column_count(tavelor_object* recordset,
                                                            int32_t* count, tavelor_error** error);
/// Fills `column` with one.
TAVELOR_C_API tavelor_status tavelor_recordset_column(tavelor_object* recordset, int32_t index,
                                                      tavelor_column* column,
                                                      tavelor_error** error);
/// The position of a column by its name, without regard to case.
TAVELOR_C_API tavelor_status tavelor_recordset_find_column(tavelor_object* recordset,
                                                           const char* name, int32_t* index,
                                                           tavelor_error** error);

// ---- Position. Leaving a row that is in edit posts it first.

/// Where to.
enum {
  TAVELOR_FIRST = 0,
  TAVELOR_LAST = 1,
  TAVELOR_NEXT = 2,     ///< past the last row the set is at EOF; once more is an error
  TAVELOR_PREVIOUS = 3  ///< before the first row it is at BOF; once more is an error
};
/// Moves; `on_row`, which may be NULL, takes whether there is a row now. TAVELOR_FIRST and
/// TAVELOR_LAST in a set without rows are no error, so that all rows are
/// `for (move(FIRST, &on); on; move(NEXT, &on))`.
TAVELOR_C_API tavelor_status tavelor_recordset_move(tavelor_object* recordset, int32_t where,
                                                    int32_t* on_row, tavelor_error** error);
/// Moves by so many rows from the current one, or from the row of `bookmark` where it is not NULL;
/// too far stops on BOF or EOF.
TAVELOR_C_API tavelor_status tavelor_recordset_move_by(tavelor_object* recordset, int32_t rows,
                                                       const double* bookmark, int32_t* on_row,
                                                       tavelor_error** error);
/// Where the cursor stands: each output may be NULL. `rows` are those of the view (filter applied,
/// deleted ones left out); `position` is from 1, or -1 for none, -2 for BOF, -3 for EOF. To count
/// rows or positions after deletions takes a pass over the view, once.
TAVELOR_C_API tavelor_status tavelor_recordset_where(tavelor_object* recordset, int32_t* bof,
                                                     int32_t* eof, int32_t* rows, int32_t* position,
                                                     tavelor_error** error);
/// Goes to a position, from 1. TAVELOR_E_INVALID_ARGUMENT out of range.
TAVELOR_C_API tavelor_status tavelor_recordset_set_position(tavelor_object* recordset,
                                                            int32_t position,
                                                            tavelor_error** error);
/// A number that names the current row whatever the filter and order, in clones too.
TAVELOR_C_API tavelor_status tavelor_recordset_bookmark(tavelor_object* recordset, double* bookmark,
                                                        tavelor_error** error);
/// Goes to the row of a bookmark. TAVELOR_E_INVALID_ARGUMENT for what is none of the view.
TAVELOR_C_API tavelor_status tavelor_recordset_set_bookmark(tavelor_object* recordset,
                                                            double bookmark, tavelor_error** error);

// ---- Cells of the current row, what is in edit and pending included.
//
// A getter of a type reads columns of that type and, where it says so, of others; for another
// column it is TAVELOR_E_WRONG_TYPE. `is_null` takes whether the cell is Null, or one of a new row
// that nobody has written; the value is 0 then, or NULL and 0 bytes. Where `is_null` is NULL, a
// Null is TAVELOR_E_INVALID_USE_OF_NULL. Nothing is allocated, but for texts of a row that is in
// edit or has changes.

/// Of whole numbers, and of flags as 0 and 1.
TAVELOR_C_API tavelor_status tavelor_recordset_get_integer(tavelor_object* recordset,
                                                           int32_t column, int64_t* value,
                                                           int32_t* is_null, tavelor_error** error);
/// Of numbers of any kind, money among them.
TAVELOR_C_API tavelor_status tavelor_recordset_get_number(tavelor_object* recordset, int32_t column,
                                                          double* value, int32_t* is_null,
                                                          tavelor_error** error);
/// Of money and of whole numbers, in ten-thousandths.
TAVELOR_C_API tavelor_status tavelor_recordset_get_money(tavelor_object* recordset, int32_t column,
                                                         int64_t* value, int32_t* is_null,
                                                         tavelor_error** error);
/// Of dates, as day numbers.
TAVELOR_C_API tavelor_status tavelor_recordset_get_date(tavelor_object* recordset, int32_t column,
                                                        double* value, int32_t* is_null,
                                                        tavelor_error** error);
/// Of texts and memos. `data` points into the set: it is good until the next call that moves,
/// writes, closes or opens the set or a clone of it, and has no NUL behind it.
TAVELOR_C_API tavelor_status tavelor_recordset_get_text(tavelor_object* recordset, int32_t column,
                                                        const char** data, size_t* size,
                                                        int32_t* is_null, tavelor_error** error);
/// Of bytes; the same.
TAVELOR_C_API tavelor_status tavelor_recordset_get_bytes(tavelor_object* recordset, int32_t column,
                                                         const void** data, size_t* size,
                                                         int32_t* is_null, tavelor_error** error);

/// Which value of a cell.
enum {
  TAVELOR_CELL_CURRENT = 0,    ///< with what is in edit and pending
  TAVELOR_CELL_ORIGINAL = 1,   ///< as it was read
  TAVELOR_CELL_UNDERLYING = 2  ///< as the database had it when it was last looked at
};
/// Of any column, as a value of its own: TAVELOR_NULL for Null, TAVELOR_EMPTY for a cell of a new
/// row that nobody has written. `value` is written, not cleared before.
TAVELOR_C_API tavelor_status tavelor_recordset_get_value(tavelor_object* recordset, int32_t column,
                                                         int32_t which, tavelor_value* value,
                                                         tavelor_error** error);

// ---- Many rows at once.

/// How the cells of a column are laid down, each row's behind the other's.
enum {
  TAVELOR_AS_INT32 = 1,   ///< int32_t; of whole numbers and flags (0, 1)
  TAVELOR_AS_INT64 = 2,   ///< int64_t; of whole numbers, flags, and money in ten-thousandths
  TAVELOR_AS_DOUBLE = 3,  ///< double; of all numbers and money; of dates as day numbers
  TAVELOR_AS_BOOL8 = 4,   ///< uint8_t, 0 or 1; of flags
  TAVELOR_AS_UNIX_US =
      5,  ///< int64_t, microseconds since 1970-01-01; of dates, to the nearest second
  TAVELOR_AS_UNIX_DAY = 6,  ///< int32_t, days since 1970-01-01; of dates, without their time
  TAVELOR_AS_TEXT = 7,      ///< offsets and bytes; of texts, memos and bytes
  TAVELOR_AS_SINGLE = 8,    ///< float; of single precision
  TAVELOR_AS_INT16 = 9      ///< int16_t; of whole numbers of 16 bits and bytes
};
/// Where a column's cells are to go: memory of the caller's, aligned for its type. The layout is
/// that of the Arrow columnar format (large_utf8 or large_binary of texts), which numpy takes too.
typedef struct tavelor_column_buffer {
  size_t size;        ///< sizeof(tavelor_column_buffer)
  int32_t column;     ///< from 0
  int32_t as;         ///< TAVELOR_AS_...
  void* values;       ///< room for `rows` of them; of a Null 0, of TAVELOR_AS_DOUBLE and _SINGLE
                      ///< NaN, of TAVELOR_AS_UNIX_US the least number (numpy's NaT). NULL for texts
  uint8_t* validity;  ///< (rows + 7) / 8 bytes: bit i % 8 of byte i / 8 is 1 where the cell of row
                      ///< i is no Null; the bits behind the last row are 0. NULL if not wanted
  int64_t* offsets;   ///< of texts: rows + 1 of them, the first 0
  char* bytes;        ///< of texts: their bytes, one behind the other; NULL to be told how many
  size_t capacity;    ///< of `bytes`
  size_t used;        ///< out: of texts, bytes written, or that would be
  size_t null_count;  ///< out
} tavelor_column_buffer;
/// Reads up to `rows` rows of the view, in its order, from the row `first` on, counted from 0, into
/// the buffers; the cursor stays. `read` takes how many there were: less at the end, and, where the
/// texts of a row do not fit any more, those before it. Pass `capacity` for texts by a first call
/// with `bytes` NULL (its other buffers NULL too, so that nothing but texts is measured), or read
/// on from first + *read with room. With 0 in `read` and rows left, a text alone is wider than its
/// room: its buffer's `used` tells what the row wants.
///
/// Errors: TAVELOR_E_WRONG_TYPE for a column that is not of the layout, TAVELOR_E_OVERFLOW for a
/// date outside the years 100 to 9999; what is in the buffers then means nothing.
TAVELOR_C_API tavelor_status tavelor_recordset_read(tavelor_object* recordset, int64_t first,
                                                    int64_t rows, tavelor_column_buffer* buffers,
                                                    size_t count, int64_t* read,
                                                    tavelor_error** error);

// ---- View

/// Shows the rows that fit "field operator value" joined by AND, OR and parentheses; "" shows all.
/// Values as the section on connections tells. The cursor goes to the first row.
/// TAVELOR_E_INVALID_ARGUMENT for a text that does not read; the old filter stays.
TAVELOR_C_API tavelor_status tavelor_recordset_filter(tavelor_object* recordset,
                                                      const char* criteria,
                                                      const tavelor_value* values, size_t count,
                                                      tavelor_error** error);
/// Rows by their state.
enum {
  TAVELOR_ROWS_ALL = 0,
  TAVELOR_ROWS_PENDING = 1,     ///< with changes that are not written, deleted ones too
  TAVELOR_ROWS_AFFECTED = 2,    ///< that the last deletion or batch touched
  TAVELOR_ROWS_FETCHED = 3,     ///< as they were fetched: all
  TAVELOR_ROWS_CONFLICTING = 5  ///< that the last batch could not write
};
/// Shows the rows of a state.
TAVELOR_C_API tavelor_status tavelor_recordset_filter_group(tavelor_object* recordset,
                                                            int32_t group, tavelor_error** error);
/// Shows the rows of bookmarks.
TAVELOR_C_API tavelor_status tavelor_recordset_filter_bookmarks(tavelor_object* recordset,
                                                                const double* bookmarks,
                                                                size_t count,
                                                                tavelor_error** error);
/// "field [ASC|DESC], ...", Null first; "" is the order of the statement. The cursor goes to the
/// first row; after an error the old order stays.
TAVELOR_C_API tavelor_status tavelor_recordset_sort(tavelor_object* recordset, const char* order,
                                                    tavelor_error** error);
/// The filter and the order as texts, each "" without one; either may be NULL. Good until the next
/// call with the set.
TAVELOR_C_API tavelor_status tavelor_recordset_view(tavelor_object* recordset, const char** filter,
                                                    const char** order, tavelor_error** error);
/// Goes to the next row that fits one comparison, from `skip` rows behind the current one on;
/// `backward` 1 for the one before. `found` takes whether there is one; without one the set stands
/// at EOF, or BOF.
TAVELOR_C_API tavelor_status tavelor_recordset_find(tavelor_object* recordset, const char* criteria,
                                                    const tavelor_value* values, size_t count,
                                                    int32_t skip, int32_t backward, int32_t* found,
                                                    tavelor_error** error);

// ---- Edit

/// Writes a cell of the current row, which is in edit then, by the rules of the column's type and
/// the locale; TAVELOR_EMPTY puts a cell of a new row back to unwritten. Errors:
/// TAVELOR_E_WRONG_TYPE, TAVELOR_E_MULTIPLE_STEP for what does not fit, TAVELOR_E_NOT_SUPPORTED in
/// a read-only set; the cell keeps its value then.
TAVELOR_C_API tavelor_status tavelor_recordset_set(tavelor_object* recordset, int32_t column,
                                                   const tavelor_value* value,
                                                   tavelor_error** error);
/// Adds a row, current and in edit.
TAVELOR_C_API tavelor_status tavelor_recordset_add_new(tavelor_object* recordset,
                                                       tavelor_error** error);
/// Posts the row in edit to the pending changes, or, with TAVELOR_LOCK_OPTIMISTIC, writes it; after
/// an error of that it is in edit still.
TAVELOR_C_API tavelor_status tavelor_recordset_update(tavelor_object* recordset,
                                                      tavelor_error** error);
/// Takes back what is in edit; without that, the current row's changes that are not written.
TAVELOR_C_API tavelor_status tavelor_recordset_cancel_update(tavelor_object* recordset,
                                                             tavelor_error** error);

/// Which rows.
enum {
  TAVELOR_AFFECT_CURRENT = 1,
  TAVELOR_AFFECT_GROUP = 2,  ///< of a filter that is no text
  TAVELOR_AFFECT_ALL = 3     ///< that the view shows
};
/// Marks rows deleted: TAVELOR_AFFECT_CURRENT or TAVELOR_AFFECT_GROUP.
TAVELOR_C_API tavelor_status tavelor_recordset_delete(tavelor_object* recordset, int32_t affect,
                                                      tavelor_error** error);
/// Writes changes. TAVELOR_E_ROW_NOT_LOCATED where somebody else has changed or deleted a row: the
/// others are written, that one stays pending and shows under TAVELOR_ROWS_CONFLICTING. After any
/// other error no row of this call is written, and all stay pending.
TAVELOR_C_API tavelor_status tavelor_recordset_update_batch(tavelor_object* recordset,
                                                            int32_t affect, tavelor_error** error);
/// Drops changes. The cursor may stand nowhere afterwards: move.
TAVELOR_C_API tavelor_status tavelor_recordset_cancel_batch(tavelor_object* recordset,
                                                            int32_t affect, tavelor_error** error);
/// Reads rows again by their keys: with `keep_changes` 0 what is read is the rows' values and
/// changes are dropped; with 1 they stay, TAVELOR_CELL_UNDERLYING tells what others have written,
/// and the next batch writes over it. TAVELOR_E_ROW_NOT_LOCATED for rows that are gone.
TAVELOR_C_API tavelor_status tavelor_recordset_resync(tavelor_object* recordset, int32_t affect,
                                                      int32_t keep_changes, tavelor_error** error);
/// What is done to the current row: `edit` takes 0 nothing, 1 in edit, 2 being added, 4 deleted;
/// `status` bits: 1 new, 2 changed, 4 deleted, 8 as read, 16 refused for what its place names,
/// 0x800 changed by somebody else, 0x1000 refused by its table; `unwritten` whether any row has
/// changes that are not written. Each may be NULL; `unwritten` alone needs no current row.
TAVELOR_C_API tavelor_status tavelor_recordset_state(tavelor_object* recordset, int32_t* edit,
                                                     int32_t* status, int32_t* unwritten,
                                                     tavelor_error** error);

// ---- Events

/// What is told of. Each WILL... is followed by its ...DONE.
enum {
  TAVELOR_EVENT_WILL_MOVE = 1,
  TAVELOR_EVENT_MOVE_DONE = 2,
  TAVELOR_EVENT_END_OF_RECORDSET = 3,  ///< set `more_data` 1 where rows were appended
  TAVELOR_EVENT_WILL_CHANGE_FIELD = 4,
  TAVELOR_EVENT_CHANGE_FIELD_DONE = 5,
  TAVELOR_EVENT_WILL_CHANGE_RECORD = 6,
  TAVELOR_EVENT_CHANGE_RECORD_DONE = 7,
  TAVELOR_EVENT_WILL_CHANGE_RECORDSET = 8,
  TAVELOR_EVENT_CHANGE_RECORDSET_DONE = 9
};
/// How an event came about, and what a handler may leave in it.
enum {
  TAVELOR_EVENT_OK = 1,
  TAVELOR_EVENT_ERRORS_OCCURRED = 2,
  TAVELOR_EVENT_CANT_DENY = 3,  ///< cannot be stopped
  TAVELOR_EVENT_CANCEL = 4,     ///< left in a WILL...: the operation fails and nothing changes
  TAVELOR_EVENT_UNWANTED = 5    ///< left in any: this event is not told to this listener again
};
/// One event, for as long as its handler runs. The handler may move, edit or close the set, and add
/// or remove listeners, itself included.
typedef struct tavelor_event {
  size_t size;           ///< as the library knows it
  int32_t event;         ///< TAVELOR_EVENT_WILL_MOVE...
  int32_t reason;        ///< 1 added, 2 deleted, 3 updated, 4 to 6 one of these undone, 7 requery,
                         ///< 8 resync, 9 close, 10 move, 11 first change, 12 to 15 move to the
                         ///< first, next, previous and last
  int32_t status;        ///< TAVELOR_EVENT_OK...; the handler may change it
  int32_t more_data;     ///< the handler may set it
  int32_t records;       ///< how many rows change
  int32_t column;        ///< that changes, or -1
  int32_t error_number;  ///< of a ..._DONE with errors
  tavelor_object* recordset;  ///< that it happens to; the handler's until it returns
  const char* raise;          ///< description of the error that the handler raises; read at once
} tavelor_event;
/// Gives 0, or the number of an error that it raises: out of a WILL... the operation fails with it,
/// out of a ..._DONE the call does, with the operation done. A C++ exception or a longjmp must not
/// leave it.
typedef tavelor_status (*tavelor_event_handler)(void* user, tavelor_event* event);
/// Tells `handler` of a set's events, and of changes that its clones make, until the listener is
/// removed or the set goes. `user` stays the caller's, and must live that long.
TAVELOR_C_API tavelor_status tavelor_recordset_listen(tavelor_object* recordset,
                                                      tavelor_event_handler handler, void* user,
                                                      tavelor_listener** listener,
                                                      tavelor_error** error);
/// Stops it and gives it back. By the apartment's thread, unless the set is gone; on another one
/// the handler is not called any more, and the rest goes later. May be called from the handler.
TAVELOR_C_API void tavelor_listener_remove(tavelor_listener* listener);

// ---------------------------------------------------------------------------------------------
// A shop: sales, closings, and what mends them.

/// Fills each catalogue of a new shop that is empty, and makes the year's counters where there are
/// none; may be called again.
TAVELOR_C_API tavelor_status tavelor_seed(tavelor_apartment* apartment, tavelor_error** error);

/// What stands on top of receipts. NULL is "".
typedef struct tavelor_issuer {
  size_t size;                ///< sizeof(tavelor_issuer)
  const char* name;           ///< of the shop
  const char* company;        ///< legal name, where it is another
  const char* fiscal_number;  ///< up to 20 characters
  const char* address;        ///< street and number
  const char* place;
  const char* postcode;  ///< "" leaves it as it is, as for the next
  const char* province;
} tavelor_issuer;
/// Says who the shop is. TAVELOR_E_NO_CURRENT_RECORD before tavelor_seed().
TAVELOR_C_API tavelor_status tavelor_set_issuer(tavelor_apartment* apartment,
                                                const tavelor_issuer* issuer,
                                                tavelor_error** error);

/// Opens the flows of an apartment's shop. TAVELOR_E_NO_CURRENT_RECORD before tavelor_seed().
TAVELOR_C_API tavelor_status tavelor_shop_open(tavelor_apartment* apartment, tavelor_shop** shop,
                                               tavelor_error** error);
/// Gives it back; a transaction of it keeps it until that is given back too. Any thread.
TAVELOR_C_API void tavelor_shop_release(tavelor_shop* shop);
/// Makes sure that the catalogue of tills has them all.
TAVELOR_C_API tavelor_status tavelor_shop_open_tills(tavelor_shop* shop, const char* const* tills,
                                                     size_t count, tavelor_error** error);

/// One article of a sale. A text that is NULL is "".
typedef struct tavelor_sale_line {
  size_t size;              ///< sizeof(tavelor_sale_line), the same in all lines of a sale
  const char* code;         ///< of the article
  const char* description;  ///< as the receipt tells it
  const char* family;       ///< code; "" for none
  const char* lot;          ///< of an article that is kept by lots; "" for the active one
  double quantity;          ///< pieces, kilos; not 0, and below 0 for a return
  double price;             ///< of one unit, euros, tax included
  double tax;               ///< percent, one that the shop has: 0 is none, 21 the general one
  double surcharge;         ///< percent, of a customer under equivalence surcharge
  double discount;          ///< percent off the price
  int32_t wants_price;      ///< 1: price, discount and tax are the shop's, and what is missing
  int32_t is_free;          ///< 1: given away on purpose, its price may be 0
} tavelor_sale_line;
/// One ticket. A text that is NULL is "".
typedef struct tavelor_sale {
  size_t size;            ///< sizeof(tavelor_sale)
  const char* reference;  ///< what the shop calls it elsewhere; of all sales, only this one has it
  const char* till;       ///< code; one that the shop has
  double day;             ///< a day number, without a time
  const char* time;       ///< "10:32"; "" for none
  const char* customer;   ///< code; "" for one that nobody knows
  const char* name;       ///< of the customer, as typed
  const char* place;      ///< where the customer lives
  const char* payment;    ///< code of one of the shop's payment methods; "1" is cash
  const char* comment;
  double delivered;           ///< euros handed over
  int32_t is_credit_granted;  ///< 1: sold on credit whatever the customer owes
  const tavelor_sale_line* lines;
  size_t line_count;
} tavelor_sale;
/// Sells, unless that very sale is there already: `ticket`, which may be NULL, takes the number of
/// the new ticket, or 0. Articles, families and customers that the shop does not know are made on
/// the way. TAVELOR_E_INVALID_CALL for a sale that is refused, with all that is wrong
/// (tavelor_error_fault()); nothing of it is left then.
TAVELOR_C_API tavelor_status tavelor_shop_sell(tavelor_shop* shop, const tavelor_sale* sale,
                                               double* ticket, tavelor_error** error);

/// What the shop asks for an article. A text that is NULL is "".
typedef struct tavelor_price_question {
  size_t size;           ///< sizeof(tavelor_price_question)
  const char* article;   ///< code
  const char* customer;  ///< code; "" for nobody
  double quantity;       ///< pieces, kilos
  const char* tariff;    ///< code; "" for the customer's
  const char* family;    ///< code; "" for the article's
  const double* day;     ///< on which offers must run; NULL for today
} tavelor_price_question;
/// The shop's own price, as a line of a sale takes it.
typedef struct tavelor_price {
  size_t size;       ///< sizeof(tavelor_price), set by the caller
  double price;      ///< of one unit, euros, tax included
  double discount;   ///< percent off the price
  double tax;        ///< percent
  double surcharge;  ///< percent, of a customer under equivalence surcharge
} tavelor_price;
/// Answers it. TAVELOR_E_INVALID_CALL where the shop has no price.
TAVELOR_C_API tavelor_status tavelor_shop_price(tavelor_shop* shop,
                                                const tavelor_price_question* question,
                                                tavelor_price* price, tavelor_error** error);

/// What comes back of a ticket.
typedef struct tavelor_returned_line {
  size_t line;      ///< of the ticket, from 1
  double quantity;  ///< above 0
} tavelor_returned_line;
/// A return of what a ticket has sold.
typedef struct tavelor_return {
  size_t size;          ///< sizeof(tavelor_return)
  double ticket;        ///< number of the ticket that is brought back
  const char* till;     ///< where
  double day;           ///< a day number
  const char* time;     ///< "10:32"; "" for none
  const char* payment;  ///< code; "" for the way in which the ticket was paid
  const char* comment;  ///< of the new ticket; NULL for "Devolución"
  const tavelor_returned_line* lines;
  size_t line_count;  ///< 0: all that has not come back yet
} tavelor_return;
/// Sells back what a ticket has sold, live or in history; `ticket` takes the number of the new one.
/// TAVELOR_E_INVALID_CALL where it is refused.
TAVELOR_C_API tavelor_status tavelor_shop_take_back(tavelor_shop* shop, const tavelor_return* what,
                                                    double* ticket, tavelor_error** error);

/// Takes back all of a ticket that should not have been sold, and cancels its invoice in place of
/// rectifying it; `what` tells no lines. TAVELOR_E_INVALID_CALL where it is refused: the ticket has
/// no record, is cancelled, was replaced, or has come back, be it in part.
TAVELOR_C_API tavelor_status tavelor_shop_cancel(tavelor_shop* shop, const tavelor_return* what,
                                                 double* ticket, tavelor_error** error);

/// An invoice that somebody wants in the place of tickets. A text that is NULL is "".
typedef struct tavelor_invoice_wish {
  size_t size;                ///< sizeof(tavelor_invoice_wish)
  const double* tickets;      ///< their numbers
  size_t ticket_count;        ///< at least 1
  double day;                 ///< of issue, a day number
  const char* customer;       ///< code of the one who is named on it
  const char* name;           ///< or the legal name of who it is,
  const char* fiscal_number;  ///< with its number; of other countries with their two letters
} tavelor_invoice_wish;
/// Issues it (F3); the tickets stay as they are. `number` takes its number as a text, and is
/// written, not cleared before. TAVELOR_E_INVALID_CALL, with all that is wrong
/// (tavelor_error_fault()), for tickets that have no record, are cancelled, replaced, invoices
/// already, or have come back, and for a recipient without a name or a right number.
TAVELOR_C_API tavelor_status tavelor_shop_invoice_tickets(tavelor_shop* shop,
                                                          const tavelor_invoice_wish* wish,
                                                          tavelor_value* number,
                                                          tavelor_error** error);

/// A closing that was made.
typedef struct tavelor_closing {
  size_t size;     ///< sizeof(tavelor_closing), set by the caller
  double number;   ///< of the closing; 0 where there was nothing to close
  double total;    ///< euros
  size_t tickets;  ///< that it took
} tavelor_closing;
/// Closes a till's tickets of a day and moves them to history.
TAVELOR_C_API tavelor_status tavelor_shop_close_till(tavelor_shop* shop, const char* till,
                                                     double day, tavelor_closing* closing,
                                                     tavelor_error** error);

/// What was found and mended, in numbers.
typedef struct tavelor_recovered {
  size_t size;        ///< sizeof(tavelor_recovered), set by the caller
  size_t sales;       ///< tickets whose stock had not been moved, and now is
  size_t closings;    ///< closings without their tickets, now gone
  size_t rewritten;   ///< closings of tickets in history, made again from them
  size_t taken_back;  ///< lost tickets whose movements are undone
  size_t kept;        ///< what stays as it is, by a decision of this call
  size_t undecided;   ///< what nothing mends
} tavelor_recovered;
/// What a person wants done with what is lost.
enum {
  TAVELOR_DECIDE_NOTHING = 0,  ///< look at the latest only, as every sale does
  TAVELOR_DECIDE_LATER = 1,    ///< look at everything, and decide nothing
  TAVELOR_FOLLOW_TICKETS = 2,  ///< stock, accounts and closings become what the tickets tell
  TAVELOR_KEEP = 3             ///< all stays, and counts as right from now on
};
/// Mends what a program that died has left. `recovered` may be NULL.
TAVELOR_C_API tavelor_status tavelor_shop_recover(tavelor_shop* shop, int32_t decision,
                                                  tavelor_recovered* recovered,
                                                  tavelor_error** error);

/// A ticket as its receipt, a line each, as a text in `text`, which is written, not cleared before;
/// TAVELOR_EMPTY for a ticket that is not there.
TAVELOR_C_API tavelor_status tavelor_ticket_text(tavelor_apartment* apartment, double ticket,
                                                 tavelor_value* text, tavelor_error** error);
/// A closing as its slip; the same.
TAVELOR_C_API tavelor_status tavelor_slip_text(tavelor_apartment* apartment, double closing,
                                               tavelor_value* text, tavelor_error** error);

/// Begins a transaction over the main database and the documents, which all that this shop does
/// joins, and what is written over its connections. TAVELOR_E_BUSY where the turn to write takes
/// too long.
TAVELOR_C_API tavelor_status tavelor_transaction_begin(tavelor_shop* shop,
                                                       tavelor_transaction** transaction,
                                                       tavelor_error** error);
/// Its connections, each a handle of the caller's; either may be NULL.
TAVELOR_C_API tavelor_status tavelor_transaction_connections(tavelor_transaction* transaction,
                                                             tavelor_object** main,
                                                             tavelor_object** documents,
                                                             tavelor_error** error);
/// Stores it; it is over then. Once.
TAVELOR_C_API tavelor_status tavelor_transaction_commit(tavelor_transaction* transaction,
                                                        tavelor_error** error);
/// Gives it back; what was not committed is undone. Any thread.
TAVELOR_C_API void tavelor_transaction_release(tavelor_transaction* transaction);

/// Begins to compare sales as they were meant with what the shop has.
TAVELOR_C_API tavelor_status tavelor_reconciliation_new(tavelor_apartment* apartment,
                                                        tavelor_reconciliation** reconciliation,
                                                        tavelor_error** error);
/// Gives it back. Any thread.
TAVELOR_C_API void tavelor_reconciliation_release(tavelor_reconciliation* reconciliation);
/// One more sale that was meant; what was taken back is one with negative quantities.
TAVELOR_C_API tavelor_status tavelor_reconciliation_expect(tavelor_reconciliation* reconciliation,
                                                           const tavelor_sale* sale,
                                                           tavelor_error** error);
/// Reads the shop; `differences`, which may be NULL, takes how many there are.
TAVELOR_C_API tavelor_status tavelor_reconciliation_compare(tavelor_reconciliation* reconciliation,
                                                            size_t* differences,
                                                            tavelor_error** error);
/// One figure that differs. What it points to is good until the next comparison.
typedef struct tavelor_difference {
  size_t size;       ///< sizeof(tavelor_difference), set by the caller
  const char* till;  ///< "" for a ticket that is nowhere
  double day;
  const char* place;  ///< "tickets", "history", "closings", "stock moves", "accounts"
  const char* what;   ///< "12 tickets where 13 were sold"
} tavelor_difference;
/// One of them, from 0. TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE beyond the last.
TAVELOR_C_API tavelor_status
tavelor_reconciliation_difference(tavelor_reconciliation* reconciliation, size_t index,
                                  tavelor_difference* difference, tavelor_error** error);

/// Where figures come from.
enum {
  TAVELOR_PLACE_MEANT = 0,
  TAVELOR_PLACE_TICKETS = 1,
  TAVELOR_PLACE_HISTORY = 2,
  TAVELOR_PLACE_CLOSINGS = 3,
  TAVELOR_PLACE_MOVEMENTS = 4,
  TAVELOR_PLACE_ACCOUNTS = 5
};
/// What was counted at one of them. A place that does not tell a figure leaves it 0.
typedef struct tavelor_tally {
  size_t size;  ///< sizeof(tavelor_tally), set by the caller
  int64_t tickets;
  int64_t lines;
  double units;
  int64_t cents;  ///< money, tax included
  int64_t owed;   ///< cents that went on account
} tavelor_tally;
/// Of one place, all tills and days together. TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE for another number.
TAVELOR_C_API tavelor_status tavelor_reconciliation_tally(tavelor_reconciliation* reconciliation,
                                                          int32_t place, tavelor_tally* tally,
                                                          tavelor_error** error);

/// What a check of the records of invoices has gone through, and found.
typedef struct tavelor_fiscal_report {
  size_t size;  ///< sizeof(tavelor_fiscal_report), set by the caller
  uint64_t records;
  uint64_t events;
  uint64_t tickets;
  int64_t total_cents;  ///< of all invoices, those in the place of tickets and cancelled ones less
  size_t flaws;         ///< 0: the chains are whole
} tavelor_fiscal_report;
/// Computes every hash, seal, link and sum of the records again, and compares tickets with them;
/// reads only, and looks at no signature. `from` and `to` are days of issue, both included, NULL
/// for the first and the last. `report` may be NULL. TAVELOR_E_NO_CURRENT_RECORD where the shop
/// keeps no records.
TAVELOR_C_API tavelor_status tavelor_fiscal_check_new(tavelor_apartment* apartment,
                                                      const double* from, const double* to,
                                                      tavelor_fiscal_check** check,
                                                      tavelor_fiscal_report* report,
                                                      tavelor_error** error);
/// Gives it back. Any thread.
TAVELOR_C_API void tavelor_fiscal_check_release(tavelor_fiscal_check* check);
/// What is wrong.
enum {
  TAVELOR_FLAW_CHANGED = 0,    ///< the record is not what it was
  TAVELOR_FLAW_REMOVED = 1,    ///< a record is not there
  TAVELOR_FLAW_INSERTED = 2,   ///< a record was not there
  TAVELOR_FLAW_REORDERED = 3,  ///< a record stands before the one that it follows
  TAVELOR_FLAW_DATE = 4,       ///< time runs backwards, or ahead of today
  TAVELOR_FLAW_SUM = 5,        ///< amounts that do not add up
  TAVELOR_FLAW_SERIES = 6,     ///< a number is missing, or there twice
  TAVELOR_FLAW_TICKET = 7      ///< a ticket without its record, or a record without its ticket
};
/// One flaw. What it points to is good until the check is given back.
typedef struct tavelor_flaw {
  size_t size;          ///< sizeof(tavelor_flaw), set by the caller
  int32_t flaw;         ///< TAVELOR_FLAW_...; others may come
  int32_t is_of_event;  ///< 1: of an event, and not of a record
  int32_t chain;
  int32_t position;      ///< in its chain; 0 where it is none of a record
  const char* invoice;   ///< its number; "" for none
  const char* sentence;  ///< "record 5, the invoice T/5 of 01-02-2027, was changed: .."
} tavelor_flaw;
/// One of them, from 0: those of the chains first, in the order of their records.
/// TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE beyond the last.
TAVELOR_C_API tavelor_status tavelor_fiscal_check_flaw(tavelor_fiscal_check* check, size_t index,
                                                       tavelor_flaw* flaw, tavelor_error** error);

// ---------------------------------------------------------------------------------------------
// Values, made in one word. They own nothing.

/// A value of a type that says nothing more: TAVELOR_EMPTY or TAVELOR_NULL.
static inline tavelor_value tavelor_nothing(int32_t type) {
  tavelor_value value;
  value.type = type;
  value.owned = 0;
  value.as.text.data = NULL;
  value.as.text.size = 0;
  return value;
}
/// Nothing given.
static inline tavelor_value tavelor_of_empty(void) {
  return tavelor_nothing(TAVELOR_EMPTY);
}
/// No value.
static inline tavelor_value tavelor_of_null(void) {
  return tavelor_nothing(TAVELOR_NULL);
}
/// True for anything but 0.
static inline tavelor_value tavelor_of_boolean(int32_t boolean) {
  tavelor_value value = tavelor_nothing(TAVELOR_BOOLEAN);
  value.as.boolean = boolean != 0;
  return value;
}
/// A whole number of 32 bits.
static inline tavelor_value tavelor_of_int32(int32_t number) {
  tavelor_value value = tavelor_nothing(TAVELOR_INT32);
  value.as.int32 = number;
  return value;
}
/// A whole number of 64 bits.
static inline tavelor_value tavelor_of_int64(int64_t number) {
  tavelor_value value = tavelor_nothing(TAVELOR_INT64);
  value.as.int64 = number;
  return value;
}
/// A number.
static inline tavelor_value tavelor_of_double(double number) {
  tavelor_value value = tavelor_nothing(TAVELOR_DOUBLE);
  value.as.number = number;
  return value;
}
/// Money, in ten-thousandths.
static inline tavelor_value tavelor_of_money(int64_t money) {
  tavelor_value value = tavelor_nothing(TAVELOR_MONEY);
  value.as.money = money;
  return value;
}
/// A date, as a day number.
static inline tavelor_value tavelor_of_date(double date) {
  tavelor_value value = tavelor_nothing(TAVELOR_DATE);
  value.as.date = date;
  return value;
}
/// A text with its size in bytes. It must live as long as the value is used.
static inline tavelor_value tavelor_of_text(const char* data, size_t size) {
  tavelor_value value = tavelor_nothing(TAVELOR_TEXT);
  value.as.text.data = data;
  value.as.text.size = size;
  return value;
}
/// A text that ends with NUL; NULL is "".
static inline tavelor_value tavelor_of_string(const char* text) {
  size_t size = 0;
  while (text != NULL && text[size] != '\0') ++size;
  return tavelor_of_text(text, size);
}
/// Bytes. They must live as long as the value is used.
static inline tavelor_value tavelor_of_bytes(const void* data, size_t size) {
  tavelor_value value = tavelor_nothing(TAVELOR_BYTES);
  value.as.bytes.data = data;
  value.as.bytes.size = size;
  return value;
}
/// An object. Its handle stays the caller's.
static inline tavelor_value tavelor_of_object(tavelor_object* object) {
  tavelor_value value = tavelor_nothing(TAVELOR_OBJECT);
  value.as.object = object;
  return value;
}

#ifdef __cplusplus
}
#endif

#endif
