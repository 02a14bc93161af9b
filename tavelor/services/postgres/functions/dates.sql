-- SPDX-License-Identifier: MIT
-- Dates: day numbers since 1899-12-30, the fraction being the time of the day; in a negative number
-- it counts away from zero (-1.25 is 1899-12-29 06:00). Years 100 to 9999.

CREATE OR REPLACE FUNCTION tv_days(t timestamp) RETURNS float8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN t >= '1899-12-30' THEN (t::date - '1899-12-30')
      + date_part('epoch', t::time) / 86400
    ELSE (t::date - '1899-12-30') - date_part('epoch', t::time) / 86400 END $$;

-- A day number far from zero does not tell one microsecond from the next: what lies as near to a
-- whole second as it can tell is that second.
CREATE OR REPLACE FUNCTION tv_timestamp(days float8) RETURNS timestamp
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  seconds float8;
  micros int8;
BEGIN
  IF days > -657435 AND days < 2958466 THEN
    seconds := abs(days - trunc(days)) * 86400;
    micros := CASE WHEN abs(seconds - round(seconds)) <= abs(days) * 4e-11 + 1e-9
      THEN round(seconds) * 1e6 ELSE round(seconds * 1e6) END;
    RETURN '1899-12-30'::timestamp + trunc(days) * '1 day'::interval
      + micros * '1 microsecond'::interval;
  END IF;
  PERFORM tv_raise(6);
END $$;

-- To the nearest second.
CREATE OR REPLACE FUNCTION tv_moment(days float8) RETURNS timestamp
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  seconds float8 := abs(days - trunc(days)) * 86400;
BEGIN
  IF days > -657435 AND days < 2958466 THEN
    seconds := floor(seconds) + CASE WHEN seconds - floor(seconds) >= 0.5 THEN 1 ELSE 0 END;
    IF trunc(days) < 2958465 OR seconds < 86400 THEN
      RETURN '1899-12-30'::timestamp + trunc(days) * '1 day'::interval
        + seconds * '1 second'::interval;
    END IF;
  END IF;
  PERFORM tv_raise(6);
END $$;

CREATE OR REPLACE FUNCTION tv_day(days float8) RETURNS float8
LANGUAGE sql STABLE PARALLEL SAFE AS
'SELECT CASE WHEN tv_moment(days) IS NOT NULL THEN days END';

-- A part of a date: yyyy, m, d, h, n, s, or w, the day of a week that begins on Sunday.
CREATE OR REPLACE FUNCTION tv_part(part text, t timestamp) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS $$
  SELECT trunc(date_part(CASE part WHEN 'yyyy' THEN 'year' WHEN 'm' THEN 'month'
      WHEN 'd' THEN 'day' WHEN 'h' THEN 'hour' WHEN 'n' THEN 'minute' WHEN 's' THEN 'second'
      WHEN 'w' THEN 'dow' ELSE tv_raise(5, 'A date has no part ''' || part || '''') END,
    date_trunc('second', t + '0.5 second'::interval)))::int8
    + CASE part WHEN 'w' THEN 1 ELSE 0 END $$;

CREATE OR REPLACE FUNCTION tv_part(part text, days float8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_part(part, tv_moment(days))';

-- The day of a week that begins on the day first: 1 is Sunday, 0 the country's own, Monday.
CREATE OR REPLACE FUNCTION tv_part(part text, t timestamp, first int8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  IF part <> 'w' THEN
    RETURN tv_part(part, t);
  ELSIF first NOT BETWEEN 0 AND 7 THEN
    PERFORM tv_raise(5, format('A week begins on day 1 to 7, not %s', first));
  END IF;
  RETURN (tv_part('w', t) - CASE first WHEN 0 THEN 2 ELSE first END + 7) % 7 + 1;
END $$;

CREATE OR REPLACE FUNCTION tv_part(part text, t timestamp, first integer) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_part(part, t, first::int8)';

CREATE OR REPLACE FUNCTION tv_part(part text, t timestamp, first float8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_part(part, t, tv_rounded(first));
END $$;

CREATE OR REPLACE FUNCTION tv_part(part text, days float8, first int8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_part(part, tv_moment(days), first)';

CREATE OR REPLACE FUNCTION tv_part(part text, days float8, first integer) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_part(part, tv_moment(days), first::int8)';

CREATE OR REPLACE FUNCTION tv_part(part text, days float8, first float8) RETURNS int8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_part(part, tv_moment(days), tv_rounded(first));
END $$;

-- Days of the Gregorian calendar since 1899-12-30, of any year. Years are counted from March, so
-- that the leap day comes last, and in eras of 400 years.
CREATE OR REPLACE FUNCTION tv_day_number(year int8, month int8, day int8) RETURNS int8
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  y int8 := CASE WHEN month <= 2 THEN year - 1 ELSE year END;
  era int8 := CASE WHEN y >= 0 THEN y ELSE y - 399 END / 400;
  year_of_era int8 := y - era * 400;
  day_of_year int8 := (153 * (month + CASE WHEN month > 2 THEN -3 ELSE 9 END) + 2) / 5 + day - 1;
BEGIN
  RETURN era * 146097 + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year
    - 693899;
END $$;

-- Parts may overflow: month 13 is January of the next year, day 0 the last of the month before.
CREATE OR REPLACE FUNCTION tv_date_serial(year int8, month int8, day int8) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  months int8;
  real_year int8;
  result int8;
BEGIN
  -- Far beyond any date.
  IF year NOT BETWEEN -4000000 AND 4000000 OR month NOT BETWEEN -4000000 AND 4000000
    OR day NOT BETWEEN -4000000 AND 4000000 THEN
    PERFORM tv_raise(5);
  END IF;
  months := year * 12 + month - 1;
  real_year := CASE WHEN months >= 0 THEN months ELSE months - 11 END / 12;
  result := tv_day_number(real_year, months - real_year * 12 + 1, 1) + day - 1;
  IF result NOT BETWEEN -657434 AND 2958465 THEN
    PERFORM tv_raise(5, 'The years go from 100 to 9999.');
  END IF;
  RETURN result;
END $$;

CREATE OR REPLACE FUNCTION tv_date_serial(year integer, month integer, day integer) RETURNS float8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_date_serial(year::int8, month::int8, day::int8)';

CREATE OR REPLACE FUNCTION tv_date_serial(year float8, month float8, day float8) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN tv_date_serial(tv_rounded(year), tv_rounded(month), tv_rounded(day));
END $$;

-- The day number of a day of the years 100 to 9999; Null for one that is not there.
CREATE OR REPLACE FUNCTION tv_known_day(year integer, month integer, day integer) RETURNS int8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN year BETWEEN 100 AND 9999 AND month BETWEEN 1 AND 12 AND day >= 1 AND day <=
    CASE WHEN month IN (4, 6, 9, 11) THEN 30 WHEN month <> 2 THEN 31
      WHEN year % 4 = 0 AND (year % 100 <> 0 OR year % 400 = 0) THEN 29 ELSE 28 END
    THEN tv_day_number(year, month, day) END $$;

-- The place of a word in a list of names parted by |, whatever its case; Null where it has none.
CREATE OR REPLACE FUNCTION tv_place(word text, names text) RETURNS integer
LANGUAGE sql STABLE PARALLEL SAFE AS
$$ SELECT array_position(string_to_array(tv_fold(names), '|'), tv_fold(word)) $$;

CREATE OR REPLACE FUNCTION tv_month_named(word text) RETURNS integer
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN coalesce(tv_place(word, tv_locale('months')), tv_place(word, tv_locale('short_months')),
    tv_place(word, 'January|February|March|April|May|June|July|August|September|October|November|December'),
    tv_place(word, 'Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec'));
END $$;

CREATE OR REPLACE FUNCTION tv_names_day(word text) RETURNS boolean
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  RETURN coalesce(tv_place(word, tv_locale('days')), tv_place(word, tv_locale('short_days')),
    tv_place(word, 'Sunday|Monday|Tuesday|Wednesday|Thursday|Friday|Saturday'),
    tv_place(word, 'Sun|Mon|Tue|Wed|Thu|Fri|Sat')) IS NOT NULL;
END $$;

-- A text as a date, a time, or both, once each and in any order; Null for any other text. By the
-- locale's order, and where that gives no date by the others. kinds and words are its parts: digits
-- (1), words, marks of dates (/), of times (:), commas.
CREATE OR REPLACE FUNCTION tv_read_date(t text) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  rest text := ltrim(t, E' \t');
  kinds text[] := '{}';
  words text[] := '{}';
  date_separator text := tv_locale('date_separator');
  time_separator text := tv_locale('time_separator');
  word text;
  at integer := 1;
  count integer;
  has_date boolean := false;
  has_time boolean := false;
  marked boolean;
  named integer;
  value integer[];
  width integer[];
  orders text[];
  places integer[];
  year integer;
  day int8 := 0;
  hour integer := 0;
  minute integer := 0;
  second integer := 0;
  fraction float8;
BEGIN
  WHILE rest <> '' LOOP
    word := substring(rest FROM '^[0-9]+');
    IF word IS NOT NULL THEN
      IF length(word) > 4 THEN
        RETURN NULL;
      END IF;
      kinds := kinds || '1'::text;
    ELSE
      word := substring(rest FROM '^(?:[A-Za-z]|[^\u0001-\u007f])+');
      IF word IS NOT NULL THEN
        kinds := kinds || 'a'::text;
      ELSE
        word := left(rest, 1);
        IF word IN (':', '/', ',') THEN
          kinds := kinds || word;
        ELSIF word = '-' THEN
          kinds := kinds || '/'::text;
        ELSIF date_separator <> '' AND starts_with(rest, date_separator) THEN
          word := date_separator;
          kinds := kinds || '/'::text;
        ELSIF time_separator <> '' AND starts_with(rest, time_separator) THEN
          word := time_separator;
          kinds := kinds || ':'::text;
        ELSE
          RETURN NULL;
        END IF;
      END IF;
    END IF;
    words := words || word;
    rest := ltrim(substr(rest, length(word) + 1), E' \t');
  END LOOP;
  count := cardinality(words);
  IF count = 0 OR count > 16 THEN
    RETURN NULL;
  END IF;

  WHILE at <= count LOOP
    IF NOT has_time AND kinds[at] = '1' AND coalesce(kinds[at + 1] = ':'
        OR lower(words[at + 1] COLLATE "C") IN ('am', 'pm'), false) THEN
      has_time := true;
      hour := words[at];
      at := at + 1;
      IF kinds[at] = ':' THEN
        IF kinds[at + 1] IS DISTINCT FROM '1' THEN
          RETURN NULL;
        END IF;
        minute := words[at + 1];
        at := at + 2;
        IF kinds[at] = ':' THEN
          IF kinds[at + 1] IS DISTINCT FROM '1' THEN
            RETURN NULL;
          END IF;
          second := words[at + 1];
          at := at + 2;
        END IF;
      END IF;
      word := lower(words[at] COLLATE "C");
      IF word IN ('am', 'pm') THEN
        IF hour NOT BETWEEN 1 AND 12 THEN
          RETURN NULL;
        END IF;
        hour := hour % 12 + CASE word WHEN 'pm' THEN 12 ELSE 0 END;
        at := at + 1;
      END IF;
    ELSIF NOT has_date THEN
      has_date := true;
      -- "mar" is both Tuesday and March in Spanish: a comma makes it the day.
      IF kinds[at] = 'a' AND tv_names_day(words[at])
          AND (kinds[at + 1] IS NOT DISTINCT FROM ',' OR tv_month_named(words[at]) IS NULL) THEN
        at := at + 1;
        IF kinds[at] = ',' THEN
          at := at + 1;
        END IF;
      END IF;
      marked := true;
      FOR i IN 1 .. 3 LOOP
        IF i > 1 THEN
          IF kinds[at] = '/' THEN
            at := at + 1;
          ELSE
            marked := false;
            IF kinds[at] = ',' THEN
              at := at + 1;
            END IF;
            IF kinds[at] = 'a' AND tv_fold(words[at]) IN ('de', 'del') THEN
              at := at + 1;
            END IF;
          END IF;
        END IF;
        IF kinds[at] = '1' THEN
          value[i] := words[at];
          width[i] := length(words[at]);
        ELSIF kinds[at] = 'a' AND named IS NULL THEN
          named := i;
          value[i] := tv_month_named(words[at]);
          width[i] := 0;
          IF value[i] IS NULL THEN
            RETURN NULL;
          END IF;
        ELSE
          RETURN NULL;
        END IF;
        at := at + 1;
      END LOOP;
      -- Each order as the places of year, month and day.
      IF named = 1 THEN
        orders := '{312,213}';
      ELSIF named = 2 THEN
        orders := '{321,123}';
      ELSIF named = 3 THEN
        orders := '{231,132}';
      ELSIF NOT marked THEN
        RETURN NULL;
      ELSE
        orders := CASE tv_locale('date_order') WHEN 'dmy' THEN '{321,312,123,132}'
          WHEN 'mdy' THEN '{312,321,123,132}' ELSE '{123,312,321,132}' END;
      END IF;
      day := NULL;
      FOR i IN 1 .. cardinality(orders) LOOP
        places := string_to_array(orders[i], NULL);
        IF width[places[2]] < 3 AND width[places[3]] < 3 THEN
          year := value[places[1]];
          IF width[places[1]] < 3 THEN
            year := year + CASE WHEN year < 30 THEN 2000 ELSE 1900 END;
          END IF;
          day := tv_known_day(year, value[places[2]], value[places[3]]);
          EXIT WHEN day IS NOT NULL;
        END IF;
      END LOOP;
      IF day IS NULL THEN
        RETURN NULL;
      END IF;
    ELSE
      RETURN NULL;
    END IF;
  END LOOP;
  IF hour > 23 OR minute > 59 OR second > 59 THEN
    RETURN NULL;
  END IF;
  fraction := ((hour * 60 + minute) * 60 + second)::float8 / 86400;
  RETURN CASE WHEN day < 0 THEN day - fraction ELSE day + fraction END;
END $$;

CREATE OR REPLACE FUNCTION tv_date(t text) RETURNS float8
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
DECLARE
  result float8 := tv_read_date(t);
BEGIN
  IF result IS NULL THEN
    PERFORM tv_raise(13, format('''%s'' is no date', t));
  END IF;
  RETURN result;
END $$;

CREATE OR REPLACE FUNCTION tv_date(days float8) RETURNS float8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT days';

CREATE OR REPLACE FUNCTION tv_date(t timestamp) RETURNS float8
LANGUAGE sql IMMUTABLE PARALLEL SAFE AS 'SELECT tv_days(t)';

CREATE OR REPLACE FUNCTION tv_part(part text, t text) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_part(part, tv_date(t))';

CREATE OR REPLACE FUNCTION tv_part(part text, t text, first int8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_part(part, tv_date(t), first)';

CREATE OR REPLACE FUNCTION tv_part(part text, t text, first integer) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_part(part, tv_date(t), first::int8)';

CREATE OR REPLACE FUNCTION tv_part(part text, t text, first float8) RETURNS int8
LANGUAGE sql STABLE PARALLEL SAFE AS 'SELECT tv_part(part, tv_date(t), first)';
