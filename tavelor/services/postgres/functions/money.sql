-- SPDX-License-Identifier: MIT
-- Money: numeric of four decimals, within what a 64-bit count of ten-thousandths holds.

-- The check raises by itself, and sees a result without a second calculation of it.
DO $$
BEGIN
  CREATE DOMAIN tv_amount AS numeric CHECK (
    CASE WHEN VALUE < -922337203685477.5808 OR VALUE > 922337203685477.5807
      THEN tv_raise(6) IS NULL ELSE true END);
EXCEPTION WHEN duplicate_object THEN NULL;
END $$;

CREATE OR REPLACE FUNCTION tv_currency(x numeric) RETURNS numeric
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  -- Whether the half of a ten-thousandth stands behind an even count shows in the rest of two.
  RETURN CASE WHEN scale(x) <= 4 THEN x
    WHEN abs(mod(x, 0.0002)) = 0.00005 THEN trunc(x, 4) ELSE round(x, 4) END::tv_amount;
END $$;

CREATE OR REPLACE FUNCTION tv_currency(x int8) RETURNS numeric
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT x::numeric::tv_amount';

CREATE OR REPLACE FUNCTION tv_currency(x integer) RETURNS numeric
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT x::numeric';

-- From 1e10 on, fifteen digits would not hold a fifth decimal: there all digits count. The doubles
-- nearest to the first and the last amount lie beyond them.
CREATE OR REPLACE FUNCTION tv_currency(x float8) RETURNS numeric
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result numeric;
BEGIN
  IF abs(x) < 1e10 THEN
    IF tv_is_decimal(x) THEN
      RETURN round(x * 1e4)::int8 * 0.0001;
    END IF;
    RETURN tv_half_even(x::numeric, 4);
  END IF;
  IF x IN ('NaN', 'Infinity', '-Infinity') THEN
    PERFORM tv_raise(6);
  END IF;
  result := tv_half_even(x::text::numeric, 4);
  IF abs(x) = 922337203685477.5807::float8 THEN
    result := CASE WHEN x < 0 THEN -922337203685477.5808 ELSE 922337203685477.5807 END;
  END IF;
  RETURN result::tv_amount;
END $$;

CREATE OR REPLACE FUNCTION tv_money_add(a numeric, b numeric) RETURNS numeric
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT (a + b)::tv_amount';

CREATE OR REPLACE FUNCTION tv_money_add(VARIADIC amounts numeric[]) RETURNS numeric
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result tv_amount := amounts[1];
BEGIN
  FOR i IN 2 .. cardinality(amounts) LOOP
    result := result + amounts[i];
  END LOOP;
  RETURN result;
END $$;

CREATE OR REPLACE FUNCTION tv_money_sub(a numeric, b numeric) RETURNS numeric
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT (a - b)::tv_amount';

CREATE OR REPLACE FUNCTION tv_money_sub(VARIADIC amounts numeric[]) RETURNS numeric
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result tv_amount := amounts[1];
BEGIN
  FOR i IN 2 .. cardinality(amounts) LOOP
    result := result - amounts[i];
  END LOOP;
  RETURN result;
END $$;

CREATE OR REPLACE FUNCTION tv_money_mul(a numeric, b numeric) RETURNS numeric
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_currency(a * b)';

CREATE OR REPLACE FUNCTION tv_money_mul(VARIADIC amounts numeric[]) RETURNS numeric
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result numeric := amounts[1];
BEGIN
  FOR i IN 2 .. cardinality(amounts) LOOP
    result := tv_currency(result * amounts[i]);
  END LOOP;
  RETURN result;
END $$;

CREATE OR REPLACE FUNCTION tv_money_neg(x numeric) RETURNS numeric
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT (- x)::tv_amount';

CREATE OR REPLACE FUNCTION tv_money_abs(x numeric) RETURNS numeric
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT abs(x)::tv_amount';

CREATE OR REPLACE FUNCTION tv_money_round(x numeric, places int8) RETURNS numeric
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  half numeric := ('{0.5,0.05,0.005,0.0005}'::numeric[])[places + 1];
BEGIN
  IF places < 0 THEN
    PERFORM tv_raise(5, 'Round to less than no decimals');
  END IF;
  RETURN CASE WHEN places >= 4 THEN x
    WHEN abs(mod(x, 4 * half)) = half THEN trunc(x, places::integer)
    ELSE round(x, places::integer) END::tv_amount;
END $$;

CREATE OR REPLACE FUNCTION tv_money_round(x numeric, places integer) RETURNS numeric
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_money_round(x, places::int8)';

CREATE OR REPLACE FUNCTION tv_money_round(x numeric, places float8) RETURNS numeric
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_money_round(x, tv_rounded(places));
END $$;
