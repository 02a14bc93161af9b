-- SPDX-License-Identifier: MIT
-- Words of texts, and rows found by their beginnings. What triggers call names its functions with
-- their schema: another program has a search path of its own, and to set one costs a row a fifth.
-- {plain from} and {plain to} stand for letters with marks and the letters without, one by one,
-- {plain letters} for the former.

-- Letters in small, without accents and marks.
CREATE OR REPLACE FUNCTION tv_plain(t text) RETURNS text
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  spanish text;
  letters text;
BEGIN
  IF octet_length(t) = length(t) THEN
    RETURN lower(t COLLATE "C");
  END IF;
  spanish := translate(lower(t COLLATE "C"), 'áéíóúüñçàèòïÁÉÍÓÚÜÑÇÀÈÒÏ', 'aeiouuncaeoiaeiouuncaeoi');
  IF octet_length(spanish) = length(spanish) THEN
    RETURN spanish;
  END IF;
  spanish := regexp_replace(tavelor.tv_fold(spanish), '[\u0300-\u036F]', '', 'g');
  letters := regexp_replace(spanish, '[^{plain letters}]+', '', 'g');
  RETURN translate(spanish, letters, CASE WHEN letters ~ '[^{plain western}]'
    THEN translate(letters, '{plain from}', '{plain to}')
    ELSE translate(letters, '{plain western from}', '{plain western to}') END);
END $$;

-- Runs of letters and digits, of 500 characters at most (a tsvector takes 2,046 bytes), as often as
-- they come.
CREATE OR REPLACE FUNCTION tv_runs(t text) RETURNS text[]
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  plain text := tavelor.tv_plain(t);
  every text[];
BEGIN
  IF octet_length(plain) = length(plain) THEN
    -- One by one what most texts have: translate() looks for each of its signs at each place.
    plain := replace(replace(replace(replace(replace(replace(plain COLLATE "C", E'\n', ' '),
      ',', ' '), '.', ' '), '-', ' '), '/', ' '), '(', ' ');
    IF plain COLLATE "C" ~ '[^a-z0-9 ]' THEN
      plain := translate(plain,
        E' !"#$%&''()*+,-./:;<=>?@[\\]^_`{|}~\t\n\r\x0b\f', repeat(' ', 38));
    END IF;
    every := array_remove(string_to_array(plain, ' '), '');
  ELSE
    every := array_remove(regexp_split_to_array(plain,
      '[\u0001-\u002F\u003A-\u0040\u005B-\u0060\u007B-\u00A9'
      '\u00AB-\u00B1\u00B4\u00B6-\u00B8\u00BB\u00BF\u00D7\u00F7\u02C2-\u02C5\u02D2-\u02DF\u037E'
      '\u0387\u0589\u05BE\u05C0\u05C3\u060C\u061B\u061F\u066A-\u066D\u06D4\u0964\u0965\u0E3F'
      '\u2000-\u206F\u207A-\u207E\u208A-\u208E\u20A0-\u20CF\u2116\u2117\u2120-\u2122\u2190-\u245F'
      '\u249C-\u24E9\u2500-\u2775\u2794-\u2BFF\u2E00-\u2E7F\u3000-\u3004\u3008-\u3020\u3030\u30FB'
      '\uFE10-\uFE6F\uFEFF-\uFF0F\uFF1A-\uFF20\uFF3B-\uFF40\uFF5B-\uFF65\uFFE0-\uFFFF]+'), '');
  END IF;
  IF length(plain) > 500 THEN
    every := ARRAY(SELECT left(word, 500) FROM unnest(every) WITH ORDINALITY AS w (word, place)
      ORDER BY place);
  END IF;
  RETURN every;
END $$;

-- The same, each once, in their order.
CREATE OR REPLACE FUNCTION tv_words(t text) RETURNS text[]
LANGUAGE sql IMMUTABLE STRICT PARALLEL SAFE AS $$
  SELECT ARRAY(SELECT word FROM unnest(tavelor.tv_runs(t)) WITH ORDINALITY AS w (word, place)
    GROUP BY word ORDER BY min(place)) $$;

-- What the index has of a row: its words, and the title's first one once more, behind a mark that
-- is of no script: so rows whose title begins with a word are found among very many.
CREATE OR REPLACE FUNCTION tv_search_words(title text, others text) RETURNS tsvector
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  first text[] := tavelor.tv_runs(title);
BEGIN
  RETURN array_to_tsvector(first || tavelor.tv_runs(others) || (chr(57344) || coalesce(first[1], '')));
END $$;

-- Rows of a table of texts, with 'most' candidates for a ranking. The plan is made for these words:
-- of rare ones by the index, of those that many rows have by a look at the first rows.
CREATE OR REPLACE FUNCTION tv_search(texts regclass, question text, most integer)
RETURNS TABLE (key text, title text, codes text, in_use boolean)
LANGUAGE plpgsql STABLE AS $$
DECLARE
  words text[] := (tv_words(question))[1:16];
  every text := '';
  begins text := '';
  whole text := '';
  found integer := 0;
  word text;
  beyond text := chr(1114111);
BEGIN
  FOREACH word IN ARRAY words LOOP
    every := every || CASE WHEN every = '' THEN '' ELSE ' & ' END || quote_literal(word) || ':*';
    whole := whole || CASE WHEN whole = '' THEN '' ELSE ' & ' END || quote_literal(word);
    begins := begins || CASE WHEN begins = '' THEN '' ELSE ' | ' END
      || quote_literal(chr(57344) || word) || ':*';
  END LOOP;
  IF every <> '' THEN
    RETURN QUERY EXECUTE format('SELECT "Clave", "Titulo", "Codigos", "Uso" FROM %s '
      'WHERE "Palabras" @@ %L::tsquery LIMIT %s', texts, every, most);
    GET DIAGNOSTICS found = ROW_COUNT;
    IF found < most THEN
      RETURN;
    END IF;
    RETURN QUERY EXECUTE format('SELECT "Clave", "Titulo", "Codigos", "Uso" FROM %s '
      'WHERE "Palabras" @@ %L::tsquery LIMIT %s', texts, CASE WHEN cardinality(words) = 1 THEN begins
        ELSE every || ' & (' || begins || ')' END, most);
    RETURN QUERY EXECUTE format('SELECT "Clave", "Titulo", "Codigos", "Uso" FROM %s '
      'WHERE "Palabras" @@ %L::tsquery LIMIT %s', texts, whole, most);
  ELSE
    beyond := chr(1);
  END IF;
  RETURN QUERY EXECUTE format('(SELECT "Clave", "Titulo", "Codigos", "Uso" FROM %1$s '
    'WHERE "Clave" >= %2$L AND "Clave" < %3$L ORDER BY "Clave" LIMIT 50) UNION ALL '
    '(SELECT "Clave", "Titulo", "Codigos", "Uso" FROM %1$s '
    'WHERE "Clave" >= %4$L AND "Clave" < %5$L ORDER BY "Clave" LIMIT 50)', texts, question,
    question || beyond, tv_ucase(question), tv_ucase(question) || beyond);
END $$;
