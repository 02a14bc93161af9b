# SPDX-License-Identifier: MIT
"""Numbers of the C interface, by name."""

# Types of columns.
INT16, INT32, SINGLE, DOUBLE, MONEY, DATE = 2, 3, 4, 5, 6, 7
BOOLEAN, BYTE, TEXT, MEMO, BYTES = 11, 17, 202, 203, 205
# When changes are written.
READ_ONLY, AT_ONCE, BATCH = 1, 3, 4
# Rows by their state, for filter_group().
ALL, PENDING, AFFECTED, FETCHED, CONFLICTING = 0, 1, 2, 3, 5
# Which rows a change is about.
CURRENT_ROW, GROUP, ALL_ROWS = 1, 2, 3
# Events.
WILL_MOVE, MOVED, END_OF_ROWS = 1, 2, 3
WILL_CHANGE_FIELD, FIELD_CHANGED, WILL_CHANGE_ROW, ROW_CHANGED, WILL_CHANGE_ROWS, ROWS_CHANGED = 4, 5, 6, 7, 8, 9
# What is done about what a program that died has left, for Shop.recover().
LOOK_AT_LATEST, LOOK_AT_ALL, FOLLOW_TICKETS, KEEP = 0, 1, 2, 3
