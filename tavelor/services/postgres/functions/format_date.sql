-- SPDX-License-Identifier: MIT
-- Date masks: d to dddd, m to mmmm, yy yyyy, h hh n nn s ss, q w ww c ttttt, AM/PM; m right after h
-- means minutes. / and : become the separators of the locale.

CREATE OR REPLACE FUNCTION tv_date_pieces(mask text) RETURNS text[]
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN ARRAY(SELECT piece[1] FROM regexp_matches(mask, '[Aa][Mm]/[Pp][Mm]|[Aa]/[Pp]|[Aa][Mm][Pp][Mm]|\\.?|"[^"]*"?|[Dd]+|[Mm]+|[Yy]+|[Hh]+|[Nn]+|[Ss]+|[Ww]+|[Qq]+|[Cc]+|[Tt]+|.', 'g')
    WITH ORDINALITY AS p (piece, place) ORDER BY place);
END $$;

-- By a mask; with none, the short date, then the long time unless it is midnight, and of day zero
-- the time only.
CREATE OR REPLACE FUNCTION tv_format_date(days float8, mask text DEFAULT NULL) RETURNS text
LANGUAGE plpgsql STABLE PARALLEL SAFE AS $$
DECLARE
  moment timestamp := tv_moment(days);
  pieces text[];
  piece text;
  letter text;
  size integer;
  twelve boolean;
  after_hour boolean := false;
  hour integer := extract(hour FROM moment);
  month integer := extract(month FROM moment);
  weekday integer := extract(dow FROM moment) + 1;
  result text := '';
BEGIN
  IF mask IS NULL THEN
    IF moment::date = '1899-12-30' THEN
      RETURN tv_format_date(days, tv_locale('long_time'));
    END IF;
    result := tv_format_date(days, tv_locale('short_date'));
    IF moment::time <> '00:00' THEN
      result := result || ' ' || tv_format_date(days, tv_locale('long_time'));
    END IF;
    RETURN result;
  END IF;
  IF mask ~ '^(?:dd|mm|yy|yyyy)(?:[/ -](?:dd|mm|yy|yyyy))*$' THEN
    RETURN replace(to_char(moment, upper(mask COLLATE "C")), '/', tv_locale('date_separator'));
  END IF;
  pieces := tv_date_pieces(mask);
  twelve := lower(pieces::text COLLATE "C")::text[] && '{am/pm,a/p,ampm}';
  FOREACH piece IN ARRAY pieces LOOP
    letter := lower(left(piece, 1) COLLATE "C");
    size := length(piece);
    IF letter = 'a' AND size > 1 THEN
      -- AMPM: the country's own words, and these have none.
      result := result || CASE WHEN size = 4 THEN ''
        WHEN hour >= 12 THEN right(piece, size / 2) ELSE left(piece, size / 2) END;
      after_hour := false;
    ELSIF letter IN ('\', '"') THEN
      result := result || tv_literal_piece(piece);
    ELSIF strpos('dmyhnswqct', letter) = 0 THEN
      result := result || CASE letter WHEN '/' THEN tv_locale('date_separator')
        WHEN ':' THEN tv_locale('time_separator') ELSE piece END;
    ELSIF letter = 'n' OR (letter = 'm' AND after_hour AND size <= 2) THEN
      result := result || to_char(moment, CASE size WHEN 1 THEN 'FMMI' ELSE 'MI' END);
      after_hour := false;
    ELSE
      after_hour := letter = 'h';
      result := result || CASE letter
        WHEN 'd' THEN CASE
          WHEN size = 1 THEN to_char(moment, 'FMDD')
          WHEN size = 2 THEN to_char(moment, 'DD')
          WHEN size = 3 THEN split_part(tv_locale('short_days'), '|', weekday)
          WHEN size = 4 THEN split_part(tv_locale('days'), '|', weekday)
          ELSE tv_format_date(days, tv_locale(CASE size WHEN 5 THEN 'short_date' ELSE 'long_date' END))
          END
        WHEN 'm' THEN CASE
          WHEN size = 1 THEN month::text
          WHEN size = 2 THEN to_char(moment, 'MM')
          ELSE split_part(tv_locale(CASE size WHEN 3 THEN 'short_months' ELSE 'months' END), '|', month)
          END
        WHEN 'y' THEN CASE
          WHEN size IN (1, 3) THEN to_char(moment, 'FMDDD')
          WHEN size = 2 THEN to_char(moment, 'YY')
          ELSE to_char(moment, 'YYYY') END
        WHEN 'h' THEN lpad((CASE WHEN twelve THEN (hour + 11) % 12 + 1 ELSE hour END)::text,
          CASE WHEN size > 1 OR hour > 9 AND NOT twelve OR (hour + 11) % 12 >= 9 AND twelve
            THEN 2 ELSE 1 END, '0')
        WHEN 's' THEN to_char(moment, CASE size WHEN 1 THEN 'FMSS' ELSE 'SS' END)
        -- Week 1 holds the first of January; weeks begin on Sunday.
        WHEN 'w' THEN CASE size WHEN 1 THEN weekday ELSE
          (extract(doy FROM moment)::integer + extract(dow FROM date_trunc('year', moment))::integer - 1)
            / 7 + 1 END::text
        WHEN 'q' THEN ((month + 2) / 3)::text
        WHEN 'c' THEN tv_format_date(days)
        -- Only a full run of t is the long time; a shorter one is text.
        ELSE CASE size WHEN 5 THEN tv_format_date(days, tv_locale('long_time')) ELSE piece END
        END;
    END IF;
  END LOOP;
  RETURN result;
END $$;
