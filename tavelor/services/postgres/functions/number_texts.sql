-- SPDX-License-Identifier: MIT
-- Texts as numbers and numbers as texts.

-- What begins a text as a whole number of another base (&H1A, &O17), and the characters that it
-- takes; Nulls for any other text. Up to 16 bits are a signed number of 16 bits, more than that one
-- of 32, as those with a & behind are.
CREATE OR REPLACE FUNCTION tv_radix(t text, OUT number int8, OUT size integer)
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  written text := substring(t FROM '^&[Hh][0-9A-Fa-f]+|^&[Oo][0-7]+');
  digits text := ltrim(substr(written, 3), '0');
  bits int8 := 0;
BEGIN
  IF written IS NULL OR length(digits) > 11 THEN
    RETURN;
  ELSIF substr(written, 2, 1) IN ('H', 'h') THEN
    IF length(digits) > 8 THEN
      RETURN;
    END IF;
    bits := ('x' || lpad(digits, 16, '0'))::bit(64)::int8;
  ELSE
    FOR i IN 1 .. length(digits) LOOP
      bits := bits * 8 + substr(digits, i, 1)::integer;
    END LOOP;
    IF bits > 4294967295 THEN
      RETURN;
    END IF;
  END IF;
  size := length(written);
  IF substr(t, size + 1, 1) = '&' THEN
    size := size + 1;
  ELSIF bits <= 65535 THEN
    number := CASE WHEN bits > 32767 THEN bits - 65536 ELSE bits END;
    RETURN;
  END IF;
  number := CASE WHEN bits > 2147483647 THEN bits - 4294967296 ELSE bits END;
END $$;

-- The nearest float8 of "-123.45e6", which is known to be well formed: infinite where none holds it,
-- 0 where it is too small. The cast alone raises for both.
CREATE OR REPLACE FUNCTION tv_nearest(plain text) RETURNS float8
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  parts text[];
  digits text;
  point int8;
BEGIN
  IF length(plain) < 300 AND strpos(plain, 'e') = 0 AND strpos(plain, 'E') = 0 THEN
    RETURN plain::float8;
  END IF;
  parts := regexp_match(plain, '^(-?)([0-9]*)\.?([0-9]*)(?:[eE]\+?(-?)0*([0-9]*))?$');
  digits := ltrim(parts[2] || parts[3], '0');
  IF digits = '' THEN
    RETURN 0;
  END IF;
  -- Digits before the point, were there no zeros before the first of them.
  point := length(digits) - length(parts[3])
    + (coalesce(parts[4], '') || '0' || left(coalesce(parts[5], ''), 7))::int8;
  IF point > 309 THEN
    RETURN (parts[1] || 'Infinity')::float8;
  ELSIF point < -323 THEN
    RETURN 0;
  ELSIF point = 309 AND abs(plain::numeric) >= 2::numeric ^ 1024 - 2::numeric ^ 970 THEN
    RETURN (parts[1] || 'Infinity')::float8;
  ELSIF point = -323 AND abs(plain::numeric) <= 2.4703282292062327208e-324 THEN
    RETURN 0;
  END IF;
  RETURN plain::float8;
END $$;

-- A number as the locale writes it, in plain form; Null for a text that is none.
CREATE OR REPLACE FUNCTION tv_plain_form(t text) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  blanks constant text := E' \t\n\v\f\r';
  decimal_sign text := tv_locale('decimal');
  thousands text := tv_locale('thousands');
  symbol text := tv_locale('currency');
  rest text := ltrim(t, blanks);
  plain text := '';
  has_sign boolean := false;
  has_parenthesis boolean := false;
  has_symbol boolean := false;
  has_digits boolean := false;
  has_decimals boolean := false;
  c text;
  radix record;
BEGIN
  IF decimal_sign <> '-' AND t ~ '^-?[0-9]{1,15}$' THEN
    RETURN t;
  END IF;
  LOOP
    c := left(rest, 1);
    IF c IN ('-', '+', '(') THEN
      IF has_sign OR has_parenthesis THEN
        RETURN NULL;
      END IF;
      has_sign := c <> '(';
      has_parenthesis := c = '(';
      plain := CASE c WHEN '+' THEN '' ELSE '-' END;
      rest := ltrim(substr(rest, 2), blanks);
    ELSIF NOT has_symbol AND symbol <> '' AND starts_with(rest, symbol) THEN
      has_symbol := true;
      rest := ltrim(substr(rest, length(symbol) + 1), blanks);
    ELSE
      EXIT;
    END IF;
  END LOOP;
  IF c = '&' THEN
    radix := tv_radix(rest);
    IF has_symbol OR has_parenthesis OR radix.number IS NULL THEN
      RETURN NULL;
    END IF;
    plain := (plain || '1')::int8 * radix.number;
    rest := substr(rest, radix.size + 1);
  ELSE
    LOOP
      c := substring(rest FROM '^[0-9]+');
      IF c IS NOT NULL THEN
        plain := plain || c;
        has_digits := true;
        rest := substr(rest, length(c) + 1);
      ELSIF NOT has_decimals AND decimal_sign <> '' AND starts_with(rest, decimal_sign) THEN
        plain := plain || '.';
        has_decimals := true;
        rest := substr(rest, length(decimal_sign) + 1);
      ELSIF NOT has_decimals AND thousands <> '' AND starts_with(rest, thousands) THEN
        rest := substr(rest, length(thousands) + 1);
      ELSE
        EXIT;
      END IF;
    END LOOP;
    IF NOT has_digits THEN
      RETURN NULL;
    END IF;
    IF rest ~ '^[eEdD]' THEN
      c := substring(rest FROM '^[eEdD][-+]?[0-9]+');
      IF c IS NULL THEN
        RETURN NULL;
      END IF;
      plain := plain || 'e' || replace(substr(c, 2), '+', '');
      rest := substr(rest, length(c) + 1);
    END IF;
  END IF;
  LOOP
    rest := ltrim(rest, blanks);
    IF has_parenthesis AND left(rest, 1) = ')' THEN
      has_parenthesis := false;
      rest := substr(rest, 2);
    ELSIF NOT has_symbol AND symbol <> '' AND starts_with(rest, symbol) THEN
      has_symbol := true;
      rest := substr(rest, length(symbol) + 1);
    ELSE
      EXIT;
    END IF;
  END LOOP;
  RETURN CASE WHEN rest = '' AND NOT has_parenthesis THEN plain END;
END $$;

-- Null for a text that is no number, or one that no float8 holds.
CREATE OR REPLACE FUNCTION tv_read_number(t text) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result float8 := tv_nearest(tv_plain_form(t));
BEGIN
  RETURN CASE WHEN result NOT IN ('Infinity', '-Infinity') THEN result END;
END $$;

CREATE OR REPLACE FUNCTION tv_number(t text) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result float8 := tv_read_number(t);
BEGIN
  IF result IS NULL THEN
    PERFORM tv_raise(13, format('''%s'' is no number', t));
  END IF;
  RETURN result + 0.0;
END $$;

CREATE OR REPLACE FUNCTION tv_number(x float8) RETURNS float8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT x';

CREATE OR REPLACE FUNCTION tv_number(x int8) RETURNS int8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT x';

CREATE OR REPLACE FUNCTION tv_number(x numeric) RETURNS numeric
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT x';

-- What begins a text as a number with a point; blanks count nowhere, and the first character that
-- does not fit ends it.
CREATE OR REPLACE FUNCTION tv_val(t text) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  written text := translate(t, E' \t\n', '');
  result float8;
  radix record;
BEGIN
  IF left(written, 1) = '&' THEN
    radix := tv_radix(written);
    RETURN coalesce(radix.number, 0);
  END IF;
  result := tv_nearest(substring(regexp_replace(written, '^\+', '')
    FROM '^-?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][-+]?[0-9]+)?'));
  IF result IN ('Infinity', '-Infinity') THEN
    PERFORM tv_raise(6);
  END IF;
  RETURN coalesce(result, 0) + 0.0;
END $$;

CREATE OR REPLACE FUNCTION tv_val(x float8) RETURNS float8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT x';

-- The place of the decimal sign in a number above 0 as 0.ddd, in powers of ten.
CREATE OR REPLACE FUNCTION tv_point(x numeric) RETURNS integer
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN x >= 1 THEN length(trunc(x)::text)
    ELSE 2 - length(x::text) + length(ltrim(x::text, '0.')) END $$;

-- Up to 15 digits with the locale's decimal sign, with an exponent where that is not enough.
CREATE OR REPLACE FUNCTION tv_plain(x float8) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  shortest text;
  seen numeric;
  digits text;
  exponent integer;
BEGIN
  IF abs(x) < 1e15 AND x = trunc(x) THEN
    RETURN x::int8::text;
  END IF;
  shortest := x::text;
  IF length(shortest) <= 16 AND strpos(shortest, 'e') = 0 AND strpos(shortest, '.') > 0 THEN
    RETURN replace(shortest, '.', tv_locale('decimal'));
  ELSIF x IN ('NaN', 'Infinity', '-Infinity') THEN
    RETURN x::text;
  END IF;
  seen := x::numeric;
  IF abs(seen) < 1e15 AND min_scale(seen) <= 15 THEN
    RETURN replace(trim_scale(seen)::text, '.', tv_locale('decimal'));
  END IF;
  digits := trim('0' FROM replace(abs(seen)::text, '.', ''));
  exponent := tv_point(abs(seen)) - 1;
  RETURN CASE WHEN x < 0 THEN '-' ELSE '' END || left(digits, 1)
    || CASE WHEN length(digits) > 1 THEN tv_locale('decimal') || substr(digits, 2) ELSE '' END
    || CASE WHEN exponent < 0 THEN 'E-' ELSE 'E+' END
    || CASE WHEN abs(exponent) < 10 THEN '0' ELSE '' END || abs(exponent);
END $$;

-- The digits that are seen of a SINGLE: seven.
CREATE OR REPLACE FUNCTION tv_single_digits(x float8) RETURNS numeric
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  shortest numeric := tv_single(x)::real::text::numeric;
BEGIN
  -- What is too small to have seven digits of its own shows those of its exact value.
  IF (x = 0 OR abs(x) >= 1.1754943508222875e-38)
      AND length(trim('0' FROM replace(abs(shortest)::text, '.', ''))) <= 7 THEN
    RETURN shortest;
  END IF;
  RETURN tv_half_even(tv_single(x)::text::numeric, 7 - tv_point(abs(shortest)));
END $$;
