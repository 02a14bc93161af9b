-- SPDX-License-Identifier: MIT
-- Values as texts: plainly by their type, and by masks. Types are the numbers of the dialect's: 4
-- SINGLE, 6 CURRENCY, 7 DATETIME, 11 BIT; all else is a plain number.

CREATE OR REPLACE FUNCTION tv_text(x float8, type integer) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN CASE type
    WHEN 4 THEN tv_plain(tv_single_digits(x)::float8)
    WHEN 6 THEN replace(trim_scale(tv_currency(x))::text, '.', tv_locale('decimal'))
    WHEN 7 THEN tv_format_date(x)
    WHEN 11 THEN tv_locale(CASE x WHEN 0 THEN 'false_text' ELSE 'true_text' END)
    ELSE tv_plain(x) END;
END $$;

CREATE OR REPLACE FUNCTION tv_text(x int8, type integer) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  IF type IN (4, 6, 7, 11) OR x NOT BETWEEN -999999999999999 AND 999999999999999 THEN
    RETURN tv_text(x::float8, type);
  END IF;
  RETURN x::text;
END $$;

CREATE OR REPLACE FUNCTION tv_text(x numeric, type integer) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  IF type <> 6 THEN
    RETURN tv_text(x::float8, type);
  END IF;
  RETURN replace(trim_scale(tv_currency(x))::text, '.', tv_locale('decimal'));
END $$;

CREATE OR REPLACE FUNCTION tv_text(t timestamp, type integer) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_text(tv_days(t), type)';

CREATE OR REPLACE FUNCTION tv_text(t text, type integer) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT t';

-- Fills the places of a text mask: @ & < > ! and a second section for an empty text.
CREATE OR REPLACE FUNCTION tv_format_text(t text, mask text) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  pieces text[] := ARRAY(SELECT p[1] FROM regexp_matches(mask, '\\.?|"[^"]*"?|.', 'g')
    WITH ORDINALITY AS m (p, place) ORDER BY place);
  piece text;
  ends integer;
  rest text := t;
  places integer;
  places_left integer;
  empty integer;
  from_left boolean;
  is_empty boolean;
  result text := '';
BEGIN
  ends := array_position(pieces, ';');
  IF ends IS NOT NULL THEN
    IF t = '' AND ends < cardinality(pieces) THEN
      pieces := pieces[ends + 1 :];
      ends := array_position(pieces, ';');
    END IF;
    pieces := pieces[: coalesce(ends - 1, cardinality(pieces))];
  END IF;
  IF '>' = ANY (pieces) THEN
    rest := tv_ucase(rest);
  ELSIF '<' = ANY (pieces) THEN
    rest := tv_lcase(rest);
  END IF;
  from_left := '!' = ANY (pieces);
  places := cardinality(array_positions(pieces, '@')) + cardinality(array_positions(pieces, '&'));
  places_left := places;
  empty := greatest(places - length(rest), 0);
  FOREACH piece IN ARRAY pieces LOOP
    IF piece IN ('@', '&') THEN
      is_empty := CASE WHEN from_left THEN places_left <= empty ELSE empty > 0 END;
      places_left := places_left - 1;
      IF is_empty THEN
        IF NOT from_left THEN
          empty := empty - 1;
        END IF;
        IF piece = '@' THEN
          result := result || ' ';
        END IF;
      ELSIF places_left = 0 THEN
        -- What is too much goes to the last place, before the text behind it.
        result := result || rest;
        rest := '';
      ELSE
        result := result || left(rest, 1);
        rest := substr(rest, 2);
      END IF;
    ELSIF piece NOT IN ('<', '>', '!') THEN
      result := result || tv_literal_piece(piece);
    END IF;
  END LOOP;
  RETURN result || rest;
END $$;

-- What a mask is of, by its first character with a meaning.
CREATE OR REPLACE FUNCTION tv_mask_kind(mask text) RETURNS text
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  first text := CASE WHEN strpos('0#dDmMyYhHnNsS@>', left(mask, 1)) > 0 THEN left(mask, 1) ELSE substring(mask FROM
    '^(?:\\.|"[^"]*"|[^\\"0#%.@&<>!dDmMyYhHnNsSwWqQcCaAtT]|[aA](?![mM]/[pP][mM]|/[pP]|[mM][pP][mM])|[tT](?![tT]{4}))*([0#%.@&<>!dDmMyYhHnNsSwWqQcC]|[aA](?=[mM]/[pP][mM]|/[pP]|[mM][pP][mM])|[tT](?=[tT]{4}))') END;
BEGIN
  RETURN CASE WHEN first IN ('0', '#', '%', '.') THEN 'number'
    WHEN first IN ('@', '&', '<', '>', '!') THEN 'text'
    WHEN first ~ '^[dDmMyYhHnNsSwWqQcCaAtT]' THEN 'date' ELSE 'number' END;
END $$;

-- A value by a mask or a named format. The value comes as what it is of: its type's number (202 a
-- text, 5 a number), the digits that are seen of it, the number, the text.
CREATE OR REPLACE FUNCTION tv_format_any(type integer, digits numeric, x float8, t text, mask text)
RETURNS text
LANGUAGE plpgsql STABLE PARALLEL SAFE AS $$
DECLARE
  kind text;
  name text := tv_fold(mask);
  chosen text := mask;
  plain text;
  days float8;
  truth boolean;
BEGIN
  IF type = 202 THEN
    x := tv_read_number(t);
    digits := x::numeric;
    plain := t;
  ELSIF mask = '' OR tv_mask_kind(mask) = 'text'
      OR (name = 'general number' AND type IN (4, 6)) THEN
    plain := CASE type WHEN 6 THEN tv_text(digits, 6) ELSE tv_text(x, type) END;
  END IF;
  IF mask = '' THEN
    RETURN plain;
  END IF;

  CASE name
    WHEN 'general number' THEN
      RETURN CASE WHEN type IN (4, 6) OR x IS NULL THEN plain ELSE tv_plain(x) END;
    WHEN 'currency' THEN
      IF digits IS NULL THEN
        RETURN plain;
      END IF;
      plain := tv_format_number(digits, '#,##0.00');
      IF tv_locale('currency_behind') = '1' THEN
        RETURN plain || ' ' || tv_locale('currency');
      END IF;
      RETURN regexp_replace(plain, '^-?', '\&' || replace(tv_locale('currency'), '\', '\\'));
    WHEN 'yes/no', 'true/false', 'on/off' THEN
      truth := CASE WHEN type <> 202 THEN x <> 0
        WHEN tv_fold(trim(t)) IN ('true', tv_fold(tv_locale('true_text'))) THEN true
        WHEN tv_fold(trim(t)) IN ('false', tv_fold(tv_locale('false_text'))) THEN false
        ELSE x <> 0 END;
      RETURN coalesce(tv_locale(CASE WHEN truth THEN split_part(name, '/', 1)
        WHEN NOT truth THEN split_part(name, '/', 2) END || '_text'), t);
    WHEN 'fixed' THEN kind := 'number'; chosen := '0.00';
    WHEN 'standard' THEN kind := 'number'; chosen := '#,##0.00';
    WHEN 'percent' THEN kind := 'number'; chosen := '0.00%';
    WHEN 'scientific' THEN kind := 'number'; chosen := '0.00E+00';
    WHEN 'general date' THEN kind := 'date'; chosen := NULL;
    WHEN 'long date' THEN kind := 'date'; chosen := tv_locale('long_date');
    WHEN 'medium date' THEN kind := 'date'; chosen := 'dd-mmm-yy';
    WHEN 'short date' THEN kind := 'date'; chosen := tv_locale('short_date');
    WHEN 'long time' THEN kind := 'date'; chosen := tv_locale('long_time');
    WHEN 'medium time' THEN kind := 'date'; chosen := 'hh:nn AM/PM';
    WHEN 'short time' THEN kind := 'date'; chosen := tv_locale('short_time');
    ELSE kind := tv_mask_kind(mask);
  END CASE;

  IF kind = 'date' THEN
    days := CASE WHEN type = 202 THEN coalesce(tv_read_date(t), x) ELSE x END;
    RETURN CASE WHEN days IS NULL THEN plain ELSE tv_format_date(days, chosen) END;
  ELSIF kind = 'text' THEN
    RETURN tv_format_text(plain, mask);
  END IF;
  RETURN CASE WHEN digits IS NULL THEN plain ELSE tv_format_number(digits, chosen) END;
END $$;

-- By a mask that only rounds and groups, which are most: #,##0.00 and 0.
CREATE OR REPLACE FUNCTION tv_format_rounded(x numeric, mask text) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  places integer := CASE strpos(mask, '.') WHEN 0 THEN 0 ELSE length(mask) - strpos(mask, '.') END;
  shown numeric := round(x, places);
BEGIN
  IF left(mask, 1) = '0' THEN
    RETURN replace(shown::text, '.', tv_locale('decimal'));
  END IF;
  RETURN CASE WHEN shown < 0 THEN '-' ELSE '' END
    || replace(to_char(trunc(abs(shown)), 'FM999,999,999,999,999,990'), ',', tv_locale('thousands'))
    || CASE places WHEN 0 THEN '' ELSE
      tv_locale('decimal') || right(shown::text, places) END;
END $$;

CREATE OR REPLACE FUNCTION tv_format(x float8, mask text, type integer) RETURNS text
LANGUAGE plpgsql STABLE PARALLEL SAFE AS $$
BEGIN
  IF type = 5 AND abs(x) < 1e15 AND mask ~ '^(?:#,##)?0(?:\.0+)?$' THEN
    RETURN tv_format_rounded(x::numeric, mask);
  END IF;
  RETURN CASE WHEN x IS NULL THEN '' ELSE tv_format_any(type,
    CASE type WHEN 4 THEN tv_single_digits(x) WHEN 6 THEN tv_currency(x)
      WHEN 11 THEN CASE x WHEN 0 THEN 0 ELSE -1 END ELSE x::numeric END,
    CASE type WHEN 4 THEN tv_single(x) WHEN 11 THEN CASE x WHEN 0 THEN 0 ELSE -1 END ELSE x END,
    NULL, coalesce(mask, ''))
    END;
END $$;

CREATE OR REPLACE FUNCTION tv_format(x int8, mask text, type integer) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_format(x::float8, mask, type)';

CREATE OR REPLACE FUNCTION tv_format(x numeric, mask text, type integer) RETURNS text
LANGUAGE plpgsql STABLE PARALLEL SAFE AS $$
BEGIN
  IF type <> 6 THEN
    RETURN tv_format(x::float8, mask, type);
  ELSIF mask ~ '^(?:#,##)?0(?:\.0+)?$' AND x IS NOT NULL THEN
    RETURN tv_format_rounded(tv_currency(x), mask);
  END IF;
  RETURN CASE WHEN x IS NULL THEN ''
    ELSE tv_format_any(6, tv_currency(x), x::float8, NULL, coalesce(mask, '')) END;
END $$;

CREATE OR REPLACE FUNCTION tv_format(t timestamp, mask text, type integer) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_format(tv_days(t), mask, type)';

CREATE OR REPLACE FUNCTION tv_format(t text, mask text, type integer) RETURNS text
LANGUAGE plpgsql STABLE PARALLEL SAFE AS $$
BEGIN
  RETURN CASE WHEN t IS NULL THEN ''
    ELSE tv_format_any(202, NULL, NULL, t, coalesce(mask, '')) END;
END $$;
