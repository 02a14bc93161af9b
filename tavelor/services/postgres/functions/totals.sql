-- SPDX-License-Identifier: MIT
-- Over rows.

-- What is a decimal is counted in ten-thousandths; the rest is summed as float8, what each sum
-- loses being kept aside.
CREATE OR REPLACE FUNCTION tv_decimal_total(numbers float8[]) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  counted int8 := 0;
  total numeric;
  others float8[];
  x float8;
  sum float8;
  rest float8 := 0;
  lost float8 := 0;
BEGIN
  -- A query takes as long to begin as a loop for some numbers.
  IF cardinality(numbers) <= 50 THEN
    FOREACH x IN ARRAY numbers LOOP
      IF tv_is_decimal(x) THEN
        counted := counted + round(x * 1e4)::int8;
        total := 0;
      ELSIF x IS NOT NULL THEN
        others := others || x;
      END IF;
    END LOOP;
    total := total + counted;
  ELSE
    SELECT sum(round(n * 1e4)::int8) FILTER (WHERE tv_is_decimal(n)),
        array_agg(n) FILTER (WHERE NOT tv_is_decimal(n))
      INTO total, others FROM unnest(numbers) AS n;
  END IF;
  IF others IS NOT NULL THEN
    FOREACH x IN ARRAY others LOOP
      sum := rest + x;
      lost := lost + CASE WHEN abs(rest) >= abs(x) THEN rest - sum + x ELSE x - sum + rest END;
      rest := sum;
    END LOOP;
    RETURN coalesce(total, 0)::float8 / 1e4 + (rest + lost);
  END IF;
  RETURN total::float8 / 1e4;
END $$;

CREATE OR REPLACE FUNCTION tv_decimal_mean(numbers float8[]) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_div(tv_decimal_total(numbers), nullif(cardinality(array_remove(numbers, NULL)), 0));
END $$;

CREATE OR REPLACE FUNCTION tv_whole_mean(numbers int8[]) RETURNS float8
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN (SELECT sum(n)::float8 / nullif(count(n), 0) FROM unnest(numbers) AS n);
END $$;

CREATE OR REPLACE FUNCTION tv_money_mean(amounts numeric[]) RETURNS numeric
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_currency((SELECT avg(n) FROM unnest(amounts) AS n));
END $$;

CREATE OR REPLACE FUNCTION tv_in_range(x numeric) RETURNS numeric
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN x::tv_amount;
END $$;

CREATE OR REPLACE AGGREGATE tv_sum(float8)
  (SFUNC = array_append, STYPE = float8[], INITCOND = '{}', FINALFUNC = tv_decimal_total);
CREATE OR REPLACE AGGREGATE tv_sum(int8)
  (SFUNC = int8pl, STYPE = int8, COMBINEFUNC = int8pl, PARALLEL = SAFE);
CREATE OR REPLACE AGGREGATE tv_sum(integer)
  (SFUNC = int4_sum, STYPE = int8, COMBINEFUNC = int8pl, PARALLEL = SAFE);
CREATE OR REPLACE AGGREGATE tv_sum(smallint)
  (SFUNC = int2_sum, STYPE = int8, COMBINEFUNC = int8pl, PARALLEL = SAFE);
CREATE OR REPLACE AGGREGATE tv_money_sum(numeric)
  (SFUNC = numeric_add, STYPE = numeric, COMBINEFUNC = numeric_add, FINALFUNC = tv_in_range,
   PARALLEL = SAFE);

CREATE OR REPLACE AGGREGATE tv_avg(float8)
  (SFUNC = array_append, STYPE = float8[], INITCOND = '{}', FINALFUNC = tv_decimal_mean);
CREATE OR REPLACE AGGREGATE tv_avg(int8)
  (SFUNC = array_append, STYPE = int8[], INITCOND = '{}', FINALFUNC = tv_whole_mean);
CREATE OR REPLACE AGGREGATE tv_avg(numeric)
  (SFUNC = array_append, STYPE = numeric[], INITCOND = '{}', FINALFUNC = tv_money_mean);

-- The first and the last value of the rows as they come, be it Null.
CREATE OR REPLACE FUNCTION tv_keep_first(kept anyarray, x anyelement) RETURNS anyarray
LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
BEGIN
  RETURN coalesce(kept, ARRAY[x]);
END $$;

CREATE OR REPLACE FUNCTION tv_kept(kept anyarray) RETURNS anyelement
LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
BEGIN
  RETURN kept[1];
END $$;

CREATE OR REPLACE FUNCTION tv_keep_last(kept anyelement, x anyelement) RETURNS anyelement
LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
BEGIN
  RETURN x;
END $$;

CREATE OR REPLACE AGGREGATE tv_first(anyelement)
  (SFUNC = tv_keep_first, STYPE = anyarray, FINALFUNC = tv_kept);
CREATE OR REPLACE AGGREGATE tv_last(anyelement)
  (SFUNC = tv_keep_last, STYPE = anyelement);
