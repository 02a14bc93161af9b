-- SPDX-License-Identifier: MIT
-- Numbers: arithmetic as of decimals, rounding, division, bits.
--
-- A float8 of up to four decimals and below about 900,000,000,000 is calculated with as the decimal
-- that it prints as, counted in ten-thousandths.

CREATE OR REPLACE FUNCTION tv_is_decimal(x float8) RETURNS boolean
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
  SELECT x = 0 OR (abs(x) BETWEEN 1e-5 AND 900719925474.1
    AND abs(x * 1e4) <= 9007199254740992
    AND abs(x * 1e4 - round(x * 1e4)) <= abs(x * 1e4) * 1e-15) $$;

-- The operator raises for what is too small for a float8; here that is 0.
CREATE OR REPLACE FUNCTION tv_product(a float8, b float8) RETURNS float8
LANGUAGE sql STABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN abs(a) < 1 AND abs(b) < 1 AND a <> 0 AND b <> 0
      AND abs(a) * 2 ^ 537 <= 0.5 / (abs(b) * 2 ^ 537)
    THEN sign(a) * sign(b) * 0 ELSE a * b END $$;

CREATE OR REPLACE FUNCTION tv_quotient(a float8, b float8) RETURNS float8
LANGUAGE sql STABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN abs(a) < 1e-15 AND abs(b) > 1 AND a <> 0
      AND abs(a) * 2 ^ 1000 <= abs(b) * 2 ^ -75
    THEN sign(a) * sign(b) * 0 ELSE a / b END $$;

-- + 0.0 leaves no negative zero.
CREATE OR REPLACE FUNCTION tv_add(a float8, b float8) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN CASE WHEN tv_is_decimal(a) AND tv_is_decimal(b)
    THEN (round(a * 1e4) + round(b * 1e4) + 0.0) / 1e4 ELSE a + b END;
END $$;

CREATE OR REPLACE FUNCTION tv_add(VARIADIC numbers float8[]) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result float8 := numbers[1];
BEGIN
  FOR i IN 2 .. cardinality(numbers) LOOP
    result := tv_add(result, numbers[i]);
  END LOOP;
  RETURN result;
END $$;

CREATE OR REPLACE FUNCTION tv_sub(a float8, b float8) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN CASE WHEN tv_is_decimal(a) AND tv_is_decimal(b)
    THEN (round(a * 1e4) - round(b * 1e4) + 0.0) / 1e4 ELSE a - b END;
END $$;

CREATE OR REPLACE FUNCTION tv_sub(VARIADIC numbers float8[]) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result float8 := numbers[1];
BEGIN
  FOR i IN 2 .. cardinality(numbers) LOOP
    result := tv_sub(result, numbers[i]);
  END LOOP;
  RETURN result;
END $$;

-- Each count in the largest unit of which it is a whole one, so that their product stays exact as
-- long as it can.
CREATE OR REPLACE FUNCTION tv_mul(a float8, b float8) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  x int8;
  y int8;
  units_x int8;
  units_y int8;
  count float8;
BEGIN
  IF tv_is_decimal(a) AND tv_is_decimal(b) THEN
    x := round(a * 1e4);
    y := round(b * 1e4);
    units_x := CASE WHEN x % 10000 = 0 THEN 10000 WHEN x % 100 = 0 THEN 100 ELSE 1 END;
    units_y := CASE WHEN y % 10000 = 0 THEN 10000 WHEN y % 100 = 0 THEN 100 ELSE 1 END;
    count := (x / units_x)::float8 * (y / units_y)::float8;
    IF abs(count) <= 9007199254740992 THEN
      RETURN count / (10000 / units_x * (10000 / units_y));
    END IF;
  END IF;
  RETURN tv_product(a, b);
END $$;

CREATE OR REPLACE FUNCTION tv_mul(VARIADIC numbers float8[]) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result float8 := numbers[1];
BEGIN
  FOR i IN 2 .. cardinality(numbers) LOOP
    result := tv_mul(result, numbers[i]);
  END LOOP;
  RETURN result;
END $$;

CREATE OR REPLACE FUNCTION tv_div(a float8, b float8) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  IF b = 0 THEN
    PERFORM tv_raise(11);
  END IF;
  RETURN CASE WHEN tv_is_decimal(a) AND tv_is_decimal(b)
    THEN (round(a * 1e4) + 0.0) / round(b * 1e4) ELSE tv_quotient(a, b) END;
END $$;

-- To so many places, halves to even.
CREATE OR REPLACE FUNCTION tv_half_even(x numeric, places integer) RETURNS numeric
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN round(x, places) + trunc(x, places) = x + x
      AND round(trunc(x, places) * 0.5, places) = trunc(x, places) * 0.5
    THEN trunc(x, places) ELSE round(x, places) END $$;

-- A number as a whole one, halves to even on the fifteen digits that are seen: those of
-- float8::numeric. Far from a half they need no look.
CREATE OR REPLACE FUNCTION tv_rounded(x float8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result float8 := CASE
    WHEN x = trunc(x) THEN x
    WHEN abs(x) < 0.4 THEN 0
    WHEN abs(x) < 1e15 AND abs(abs(x) - floor(abs(x)) - 0.5) > abs(x) * 1e-14 THEN round(x)
    ELSE tv_half_even(x::numeric, 0)::float8 END;
BEGIN
  IF abs(result) < 9.2e18 THEN
    RETURN result::int8;
  END IF;
  PERFORM tv_raise(6);
END $$;

CREATE OR REPLACE FUNCTION tv_rounded(x numeric) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result numeric := tv_half_even(x, 0);
BEGIN
  IF abs(result) < 9.2e18 THEN
    RETURN result::int8;
  END IF;
  PERFORM tv_raise(6);
END $$;

CREATE OR REPLACE FUNCTION tv_round(x float8, places int8) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  power float8;
  scaled float8;
BEGIN
  IF places < 0 THEN
    PERFORM tv_raise(5, 'Round to less than no decimals');
  END IF;
  IF x = trunc(x) THEN
    RETURN x;
  END IF;
  IF places < 10 THEN
    power := ('{1,1e1,1e2,1e3,1e4,1e5,1e6,1e7,1e8,1e9}'::float8[])[places + 1];
    scaled := abs(x) * power;
    IF scaled < 0.4 THEN
      RETURN 0;
    ELSIF scaled < 1e15 AND abs(scaled - floor(scaled) - 0.5) > scaled * 1e-14 THEN
      RETURN CASE WHEN scaled < 0.5 THEN 0 ELSE sign(x) * round(scaled) / power END;
    END IF;
  END IF;
  RETURN tv_half_even(x::numeric, least(places, 30)::integer)::float8;
END $$;

CREATE OR REPLACE FUNCTION tv_round(x float8, places integer) RETURNS float8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_round(x, places::int8)';

CREATE OR REPLACE FUNCTION tv_round(x float8, places float8) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_round(x, tv_rounded(places));
END $$;

CREATE OR REPLACE FUNCTION tv_round(x int8, places int8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  IF places < 0 THEN
    PERFORM tv_raise(5, 'Round to less than no decimals');
  END IF;
  RETURN x;
END $$;

CREATE OR REPLACE FUNCTION tv_round(x int8, places integer) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_round(x, places::int8)';

CREATE OR REPLACE FUNCTION tv_round(x int8, places float8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_round(x, tv_rounded(places));
END $$;

CREATE OR REPLACE FUNCTION tv_intdiv(a int8, b int8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT a / b';

CREATE OR REPLACE FUNCTION tv_intdiv(a float8, b float8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_rounded(a) / tv_rounded(b);
END $$;

CREATE OR REPLACE FUNCTION tv_intdiv(a float8, b int8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_rounded(a) / b;
END $$;

CREATE OR REPLACE FUNCTION tv_intdiv(a int8, b float8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN a / tv_rounded(b);
END $$;

CREATE OR REPLACE FUNCTION tv_mod(a int8, b int8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT a % b';

CREATE OR REPLACE FUNCTION tv_mod(a float8, b float8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_rounded(a) % tv_rounded(b);
END $$;

CREATE OR REPLACE FUNCTION tv_mod(a float8, b int8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_rounded(a) % b;
END $$;

CREATE OR REPLACE FUNCTION tv_mod(a int8, b float8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN a % tv_rounded(b);
END $$;

-- A number that its type holds: 17 a BYTE, 2 a SHORT, 3 a LONG.
CREATE OR REPLACE FUNCTION tv_whole(x int8, type integer) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  lowest int8 := CASE type WHEN 17 THEN 0 WHEN 2 THEN -32768 ELSE -2147483648 END;
  highest int8 := CASE type WHEN 17 THEN 255 WHEN 2 THEN 32767 ELSE 2147483647 END;
BEGIN
  IF x NOT BETWEEN lowest AND highest THEN
    PERFORM tv_raise(6, format('%s is not between %s and %s', x, lowest, highest));
  END IF;
  RETURN x;
END $$;

CREATE OR REPLACE FUNCTION tv_whole(x float8, type integer) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_whole(tv_rounded(x), type)';

CREATE OR REPLACE FUNCTION tv_whole(x numeric, type integer) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_whole(tv_rounded(x), type)';

-- Bits are those of a LONG. A Null may be any number: with 0, And gives 0; with -1, Or gives -1.
CREATE OR REPLACE FUNCTION tv_and(a int8, b int8) RETURNS int8
LANGUAGE plpgsql STABLE PARALLEL SAFE AS $$
DECLARE
  x int8 := tv_whole(a, 3);
  y int8 := tv_whole(b, 3);
BEGIN
  RETURN CASE WHEN x = 0 OR y = 0 THEN 0 ELSE x & y END;
END $$;

CREATE OR REPLACE FUNCTION tv_and(a float8, b float8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_and(tv_whole(a, 3), tv_whole(b, 3))';

CREATE OR REPLACE FUNCTION tv_and(a float8, b int8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_and(tv_whole(a, 3), tv_whole(b, 3))';

CREATE OR REPLACE FUNCTION tv_and(a int8, b float8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_and(tv_whole(a, 3), tv_whole(b, 3))';

CREATE OR REPLACE FUNCTION tv_and(a smallint, b smallint) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_and(a::int8, b::int8)';

CREATE OR REPLACE FUNCTION tv_or(a int8, b int8) RETURNS int8
LANGUAGE plpgsql STABLE PARALLEL SAFE AS $$
DECLARE
  x int8 := tv_whole(a, 3);
  y int8 := tv_whole(b, 3);
BEGIN
  RETURN CASE WHEN x = -1 OR y = -1 THEN -1 ELSE x | y END;
END $$;

CREATE OR REPLACE FUNCTION tv_or(a float8, b float8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_or(tv_whole(a, 3), tv_whole(b, 3))';

CREATE OR REPLACE FUNCTION tv_or(a float8, b int8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_or(tv_whole(a, 3), tv_whole(b, 3))';

CREATE OR REPLACE FUNCTION tv_or(a int8, b float8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_or(tv_whole(a, 3), tv_whole(b, 3))';

CREATE OR REPLACE FUNCTION tv_or(a smallint, b smallint) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_or(a::int8, b::int8)';

CREATE OR REPLACE FUNCTION tv_not(x int8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT ~ tv_whole(x, 3)';

CREATE OR REPLACE FUNCTION tv_not(x float8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT ~ tv_whole(tv_rounded(x), 3)';

-- The operator raises for powers that are too small for a float8, and for those that are no number.
CREATE OR REPLACE FUNCTION tv_power(a float8, b float8) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  IF (a = 0 AND b < 0) OR (a < 0 AND b <> trunc(b)) THEN
    PERFORM tv_raise(6);
  END IF;
  IF abs(b) > 1 AND a NOT IN (0, 1, -1)
      AND ln(abs(a)) * least(greatest(b, -1e300), 1e300) / ln(2::float8) <= -1075 THEN
    RETURN CASE WHEN a < 0 AND b <> trunc(b / 2) * 2 THEN '-0'::float8 ELSE 0 END;
  END IF;
  RETURN power(a, b);
END $$;

-- A number that a SINGLE holds; what is too small for one is 0.
CREATE OR REPLACE FUNCTION tv_single(x float8) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN CASE WHEN x <> 0 AND abs(x) <= 7.006492321624085e-46 THEN sign(x) * 0 ELSE x::real END;
END $$;

CREATE OR REPLACE FUNCTION tv_int(x float8) RETURNS float8
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN CASE WHEN tv_is_decimal(x) THEN floor((round(x * 1e4) + 0.0) / 1e4) ELSE floor(x) END;
END $$;

CREATE OR REPLACE FUNCTION tv_int(x int8) RETURNS int8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT x';

CREATE OR REPLACE FUNCTION tv_int(x integer) RETURNS int8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT x::int8';

CREATE OR REPLACE FUNCTION tv_int(x numeric) RETURNS numeric
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT floor(x)';

CREATE OR REPLACE FUNCTION tv_fix(x float8) RETURNS float8
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN CASE WHEN x < 0 THEN - tv_int(- x) ELSE tv_int(x) END;
END $$;

CREATE OR REPLACE FUNCTION tv_fix(x int8) RETURNS int8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT x';

CREATE OR REPLACE FUNCTION tv_fix(x integer) RETURNS int8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT x::int8';

CREATE OR REPLACE FUNCTION tv_fix(x numeric) RETURNS numeric
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT trunc(x)';
