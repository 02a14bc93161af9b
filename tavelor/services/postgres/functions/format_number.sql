-- SPDX-License-Identifier: MIT
-- Number masks: 0 # . , % E+ E- and up to three sections (positive;negative;zero). A comma between
-- digits groups, one before the point or at the end divides by a thousand. Backslash and quotes
-- keep characters as they are. Halves go away from zero.

-- The pieces of a mask: a character with a meaning each, an exponent, what a backslash or quotes
-- keep with them.
CREATE OR REPLACE FUNCTION tv_number_pieces(mask text) RETURNS text[]
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN ARRAY(SELECT piece[1] FROM regexp_matches(mask, '\\.?|"[^"]*"?|[Ee][-+][0#]+|.', 'g')
    WITH ORDINALITY AS p (piece, place) ORDER BY place);
END $$;

-- A piece that stays, without its backslash or quotes.
CREATE OR REPLACE FUNCTION tv_literal_piece(piece text) RETURNS text
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN starts_with(piece, '\') THEN substr(piece, 2)
    WHEN starts_with(piece, '"') THEN replace(piece, '"', '') ELSE piece END $$;

CREATE OR REPLACE FUNCTION tv_format_number(x numeric, mask text) RETURNS text
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  pieces text[] := tv_number_pieces(mask);
  piece text;
  section integer := 1;
  begins integer[] := '{1}';
  ends integer[];
  needs_sign boolean := x < 0;
  integer_places integer := 0;
  least_integers integer := 0;
  decimals integer := 0;
  least_decimals integer := 0;
  shift integer := 0;
  commas integer := 0;
  grouping boolean := false;
  has_point boolean := false;
  has_exponent boolean := false;
  exponent integer := 0;
  shown numeric := abs(x);
  integer_text text;
  decimal_text text;
  total integer;
  integers_left integer;
  decimals_done integer := 0;
  first_place integer;
  point_done boolean := false;
  result text;
BEGIN
  FOR i IN 1 .. cardinality(pieces) LOOP
    IF pieces[i] = ';' THEN
      ends[section] := i - 1;
      section := section + 1;
      begins[section] := i + 1;
    END IF;
  END LOOP;
  ends[section] := cardinality(pieces);
  IF x < 0 AND ends[2] >= begins[2] THEN
    section := 2;
    needs_sign := false;
  ELSIF x = 0 AND ends[3] >= begins[3] THEN
    section := 3;
  ELSE
    section := 1;
  END IF;
  pieces := pieces[begins[section] : ends[section]];

  -- What must be known before the first character is written.
  FOREACH piece IN ARRAY pieces LOOP
    IF piece IN ('0', '#') THEN
      IF has_point THEN
        decimals := decimals + 1;
        IF piece = '0' THEN
          least_decimals := decimals;
        END IF;
      ELSE
        grouping := grouping OR commas > 0;
        commas := 0;
        integer_places := integer_places + 1;
        IF piece = '0' OR least_integers > 0 THEN
          least_integers := least_integers + 1;
        END IF;
      END IF;
    ELSIF piece = ',' THEN
      IF integer_places > 0 AND NOT has_point THEN
        commas := commas + 1;
      END IF;
    ELSIF piece = '.' THEN
      shift := shift - 3 * commas;
      commas := 0;
      has_point := true;
    ELSIF piece = '%' THEN
      shift := shift + 2;
    ELSIF piece ~ '^[Ee].' THEN
      has_exponent := true;
    END IF;
  END LOOP;
  shift := shift - 3 * commas;

  IF shown <> 0 THEN
    shown := shown * ('1e' || shift)::numeric;
    IF has_exponent THEN
      exponent := tv_point(shown) - integer_places;
      shown := shown * ('1e' || - exponent)::numeric;
    END IF;
    shown := round(shown, decimals);
    IF has_exponent AND shown <> 0 AND tv_point(shown) > integer_places THEN  -- 9.99 became 10.0
      shown := shown * 0.1;
      exponent := exponent + 1;
    END IF;
  END IF;
  result := CASE WHEN needs_sign AND shown <> 0 THEN '-' ELSE '' END;

  shown := trim_scale(shown);
  integer_text := CASE WHEN shown >= 1 THEN trunc(shown)::text ELSE '' END;
  decimal_text := CASE WHEN scale(shown) > 0 THEN split_part(shown::text, '.', 2) ELSE '' END;
  total := greatest(length(integer_text), least_integers);
  integer_text := lpad(integer_text, total, '0');
  decimal_text := rpad(decimal_text, greatest(length(decimal_text), least_decimals), '0');
  integers_left := integer_places;
  FOREACH piece IN ARRAY pieces LOOP
    IF piece IN ('0', '#') THEN
      IF point_done THEN
        decimals_done := decimals_done + 1;
        result := result || substr(decimal_text, decimals_done, 1);
      ELSE
        -- The first place also takes the digits that no place was left for.
        first_place := CASE WHEN integers_left = integer_places THEN total ELSE integers_left END - 1;
        integers_left := integers_left - 1;
        FOR place IN REVERSE first_place .. integers_left LOOP
          IF place < total THEN
            result := result || substr(integer_text, total - place, 1);
            IF grouping AND place > 0 AND place % 3 = 0 THEN
              result := result || tv_locale('thousands');
            END IF;
          END IF;
        END LOOP;
      END IF;
    ELSIF piece = '.' THEN
      IF point_done THEN
        result := result || piece;
      ELSE
        IF integer_places = 0 THEN
          result := result || integer_text;
        END IF;
        result := result || tv_locale('decimal');
        point_done := true;
      END IF;
    ELSIF piece = '%' THEN
      result := result || piece;
    ELSIF piece ~ '^[Ee].' THEN
      result := result || left(piece, 1)
        || CASE WHEN exponent < 0 THEN '-' WHEN substr(piece, 2, 1) = '+' THEN '+' ELSE '' END
        || lpad(abs(exponent)::text, greatest(length(abs(exponent)::text),
                                              length(replace(piece, '#', '')) - 2), '0');
    ELSIF piece <> ',' THEN
      result := result || tv_literal_piece(piece);
    END IF;
  END LOOP;
  RETURN result;
END $$;
