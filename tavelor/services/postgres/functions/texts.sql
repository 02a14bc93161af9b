-- SPDX-License-Identifier: MIT
-- Texts: characters, cuts, letters in either case.
--
-- Letters change case by tables that the library makes from its own; the server's locale is never
-- asked. {upper letters} stand for the letters beyond ASCII that have a capital, as the inside of a
-- character class, {upper from} and {upper to} for these letters and their capitals one by one;
-- lower and fold alike. Those of Western Europe come first, and alone in {.. western}.

CREATE OR REPLACE FUNCTION tv_ucase_wide(t text) RETURNS text
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  -- Those of Spanish are nearly all that there are.
  spanish text := replace(replace(replace(replace(replace(replace(upper(t COLLATE "C"),
    'á', 'Á'), 'é', 'É'), 'í', 'Í'), 'ó', 'Ó'), 'ú', 'Ú'), 'ñ', 'Ñ');
  letters text;
BEGIN
  IF spanish !~ '[{upper letters}]' THEN
    RETURN spanish;
  END IF;
  letters := regexp_replace(spanish, '[^{upper letters}]+', '', 'g');
  RETURN translate(spanish, letters, CASE WHEN letters ~ '[^{upper western}]'
    THEN translate(letters, '{upper from}', '{upper to}')
    ELSE translate(letters, '{upper western from}', '{upper western to}') END);
END $$;

CREATE OR REPLACE FUNCTION tv_lcase_wide(t text) RETURNS text
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  spanish text := replace(replace(replace(replace(replace(replace(lower(t COLLATE "C"),
    'Á', 'á'), 'É', 'é'), 'Í', 'í'), 'Ó', 'ó'), 'Ú', 'ú'), 'Ñ', 'ñ');
  letters text;
BEGIN
  IF spanish !~ '[{lower letters}]' THEN
    RETURN spanish;
  END IF;
  letters := regexp_replace(spanish, '[^{lower letters}]+', '', 'g');
  RETURN translate(spanish, letters, CASE WHEN letters ~ '[^{lower western}]'
    THEN translate(letters, '{lower from}', '{lower to}')
    ELSE translate(letters, '{lower western from}', '{lower western to}') END);
END $$;

CREATE OR REPLACE FUNCTION tv_fold_wide(t text) RETURNS text
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  spanish text := replace(replace(replace(replace(replace(replace(lower(t COLLATE "C"),
    'Á', 'á'), 'É', 'é'), 'Í', 'í'), 'Ó', 'ó'), 'Ú', 'ú'), 'Ñ', 'ñ');
  letters text;
BEGIN
  IF spanish !~ '[{fold letters}]' THEN
    RETURN spanish;
  END IF;
  letters := regexp_replace(spanish, '[^{fold letters}]+', '', 'g');
  RETURN translate(spanish, letters, CASE WHEN letters ~ '[^{fold western}]'
    THEN translate(letters, '{fold from}', '{fold to}')
    ELSE translate(letters, '{fold western from}', '{fold western to}') END);
END $$;

CREATE OR REPLACE FUNCTION tv_ucase(t text) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN octet_length(t) = length(t) OR t !~ '[{upper letters}]'
    THEN upper(t COLLATE "C") ELSE tv_ucase_wide(t) END $$;

CREATE OR REPLACE FUNCTION tv_lcase(t text) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN octet_length(t) = length(t) OR t !~ '[{lower letters}]'
    THEN lower(t COLLATE "C") ELSE tv_lcase_wide(t) END $$;

-- The form in which texts that differ in case only are equal.
CREATE OR REPLACE FUNCTION tv_fold(t text) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN octet_length(t) = length(t) OR t !~ '[{fold letters}]'
    THEN lower(t COLLATE "C") ELSE tavelor.tv_fold_wide(t) END $$;

CREATE OR REPLACE FUNCTION tv_left(t text, n int8) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS $$
  SELECT left(t, CASE WHEN n BETWEEN 0 AND 2147483647 THEN n WHEN n > 0 THEN 2147483647
    WHEN n < 0 AND t IS NOT NULL THEN tv_raise(5, n || ' is less than 0')::int8 END::integer) $$;

CREATE OR REPLACE FUNCTION tv_left(t text, n integer) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_left(t, n::int8)';

CREATE OR REPLACE FUNCTION tv_left(t text, n float8) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_left(t, tv_rounded(n));
END $$;

CREATE OR REPLACE FUNCTION tv_right(t text, n int8) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS $$
  SELECT right(t, CASE WHEN n BETWEEN 0 AND 2147483647 THEN n WHEN n > 0 THEN 2147483647
    WHEN n < 0 AND t IS NOT NULL THEN tv_raise(5, n || ' is less than 0')::int8 END::integer) $$;

CREATE OR REPLACE FUNCTION tv_right(t text, n integer) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_right(t, n::int8)';

CREATE OR REPLACE FUNCTION tv_right(t text, n float8) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_right(t, tv_rounded(n));
END $$;

CREATE OR REPLACE FUNCTION tv_mid(t text, start int8) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS $$
  SELECT substr(t, CASE WHEN start BETWEEN 1 AND 2147483647 THEN start
    WHEN start > 0 THEN 2147483647
    WHEN start < 1 AND t IS NOT NULL THEN tv_raise(5, start || ' is less than 1')::int8 END::integer) $$;

CREATE OR REPLACE FUNCTION tv_mid(t text, start integer) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_mid(t, start::int8)';

CREATE OR REPLACE FUNCTION tv_mid(t text, start float8) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_mid(t, tv_rounded(start));
END $$;

CREATE OR REPLACE FUNCTION tv_mid(t text, start int8, n int8) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_left(tv_mid(t, start), n);
END $$;

CREATE OR REPLACE FUNCTION tv_mid(t text, start integer, n integer) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_mid(t, start::int8, n::int8)';

CREATE OR REPLACE FUNCTION tv_mid(t text, start float8, n float8) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_mid(t, tv_rounded(start), tv_rounded(n));
END $$;

-- Where a part begins, in characters from 1; 0 where it does not stand. Without regard to case
-- unless compare is 0.
CREATE OR REPLACE FUNCTION tv_instr(start int8, t text, part text, compare int8 DEFAULT 1)
RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  found integer;
BEGIN
  IF start < 1 THEN
    PERFORM tv_raise(5, start || ' is less than 1');
  ELSIF compare NOT BETWEEN 0 AND 2 THEN
    PERFORM tv_raise(5, format('InStr compares by 0, 1 or 2, not by %s', compare));
  ELSIF start > length(t) THEN
    RETURN 0;
  END IF;
  IF compare = 0 THEN
    found := strpos(substr(t, start::integer), part);
  ELSE
    found := strpos(substr(tv_fold(t), start::integer), tv_fold(part));
  END IF;
  RETURN CASE WHEN found > 0 THEN found + start - 1 ELSE 0 END;
END $$;

CREATE OR REPLACE FUNCTION tv_instr(start float8, t text, part text) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_instr(tv_rounded(start), t, part);
END $$;

CREATE OR REPLACE FUNCTION tv_instr(start float8, t text, part text, compare float8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_instr(tv_rounded(start), t, part, tv_rounded(compare));
END $$;

CREATE OR REPLACE FUNCTION tv_instr(t text, part text) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_instr(1::int8, t, part)';

-- A text that is to go into a column of so many characters.
CREATE OR REPLACE FUNCTION tv_fit(t text, room integer) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN length(t) > room THEN tv_raise(-2147217887,
    'a text of ' || length(t) || ' characters is too long for ' || room) ELSE t END $$;
