-- SPDX-License-Identifier: MIT
-- Counters that are given a number.

-- The number that a column, which counts by itself, is given in a new row: the counter goes on
-- behind it. Null takes the next one. `table_name` is written as statements write it.
--
-- A counter is only ever drawn from, never set, as long as the number is within reach: another
-- session that draws at the same time gets a number that is nobody else's. One far ahead would take
-- too long; the sequence is set to it, and the table is held meanwhile.
CREATE OR REPLACE FUNCTION tv_counted(table_name text, column_name text, given int8) RETURNS int8
LANGUAGE plpgsql VOLATILE AS $$
DECLARE
  reach CONSTANT int8 := 100000;
  counter CONSTANT regclass := pg_get_serial_sequence(table_name, column_name);
  reached int8;
BEGIN
  IF given IS NULL THEN
    RETURN nextval(counter);
  END IF;
  EXECUTE format('SELECT CASE WHEN is_called THEN last_value ELSE last_value - 1 END FROM %s',
                 counter) INTO reached;
  IF given - reached > reach THEN
    EXECUTE format('LOCK TABLE %s IN SHARE ROW EXCLUSIVE MODE', table_name);
    PERFORM setval(counter, given);
    RETURN given;
  END IF;
  WHILE reached < given LOOP
    reached := nextval(counter);
  END LOOP;
  RETURN given;
END $$;
