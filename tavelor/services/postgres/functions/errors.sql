-- SPDX-License-Identifier: MIT
-- Errors, and the domains of columns.
--
-- What holds for all functions here: each gives for each value what the embedded engine gives. A
-- function that may raise is STABLE, not IMMUTABLE, so that no planner calls it for a branch that
-- is never reached. One whose body is a single expression is SQL and not STRICT: only such the
-- planner writes out where it is called, and Nulls pass through its operators. An argument that
-- stands several times in such a body must be cheap, or the planner refuses; where arguments are
-- calculations the function is in PL/pgSQL. To raise a statement's error takes SQLSTATE TVERR with
-- the number in DETAIL.

CREATE OR REPLACE FUNCTION tv_raise(number integer, detail text DEFAULT '') RETURNS text
LANGUAGE plpgsql STABLE PARALLEL SAFE AS $$
BEGIN
  RAISE EXCEPTION USING ERRCODE = 'TVERR', DETAIL = number::text, MESSAGE = concat_ws(' ',
    CASE number
      WHEN 5 THEN 'Invalid procedure call or argument.'
      WHEN 6 THEN 'Overflow.'
      WHEN 11 THEN 'Division by zero.'
      WHEN 13 THEN 'Type mismatch.'
      WHEN 93 THEN 'Invalid pattern string.'
      WHEN -2147217887 THEN
        'Multiple-step operation generated errors. Check each status value.'
    END, nullif(detail, ''));
END $$;

DO $$
BEGIN
  CREATE DOMAIN flag AS smallint CHECK (VALUE IN (-1, 0));
EXCEPTION WHEN duplicate_object THEN NULL;
END $$;

DO $$
BEGIN
  CREATE DOMAIN byte AS smallint CHECK (VALUE BETWEEN 0 AND 255);
EXCEPTION WHEN duplicate_object THEN NULL;
END $$;
