-- SPDX-License-Identifier: MIT
-- Like: * and % stand for any run, ? and _ for one character, # for a digit, [a-z] and [!a-z] for
-- sets; without regard to the case of any letter.

-- A pattern with # or sets, as a regular expression of the folded text; behind a ! what is wrong with
-- it. It does not raise: so it is IMMUTABLE, and made once where the pattern is known to the planner.
CREATE OR REPLACE FUNCTION tv_like_expression(pattern text) RETURNS text
LANGUAGE plpgsql IMMUTABLE STRICT PARALLEL SAFE AS $$
DECLARE
  folded text := tv_fold(pattern);
  size integer := length(folded);
  at integer := 1;
  result text := '^';
  c text;
  first text;
  negated boolean;
  ranges text;
  count integer;
BEGIN
  WHILE at <= size LOOP
    c := substr(folded, at, 1);
    at := at + 1;
    IF c IN ('*', '%') THEN
      result := result || '.*';
    ELSIF c IN ('?', '_') THEN
      result := result || '.';
    ELSIF c = '#' THEN
      result := result || '[0-9]';
    ELSIF c <> '[' THEN
      result := result || regexp_replace(c, '^([^[:alnum:]])$', '\\\1');
    ELSE
      -- "[]" is nothing, "[!]" the mark itself, a hyphen at an end is a hyphen.
      negated := substr(folded, at, 1) = '!' AND substr(folded, at + 1, 1) <> ']';
      IF negated THEN
        at := at + 1;
      END IF;
      ranges := '';
      count := 0;
      LOOP
        IF at > size THEN
          RETURN '!A [ is never closed.';
        END IF;
        first := substr(folded, at, 1);
        EXIT WHEN first = ']';
        at := at + 1;
        c := first;
        IF substr(folded, at, 1) = '-' AND at < size AND substr(folded, at + 1, 1) <> ']' THEN
          c := substr(folded, at + 1, 1);
          at := at + 2;
          IF ascii(c) < ascii(first) THEN
            RETURN '!A range of characters falls.';
          END IF;
        END IF;
        ranges := ranges || format('\U%s-\U%s', lpad(to_hex(ascii(first)), 8, '0'),
                                   lpad(to_hex(ascii(c)), 8, '0'));
        count := count + 1;
      END LOOP;
      at := at + 1;
      IF count > 0 THEN
        result := result || CASE WHEN negated THEN '[^' ELSE '[' END || ranges || ']';
      END IF;
    END IF;
  END LOOP;
  RETURN result || '$';
END $$;

CREATE OR REPLACE FUNCTION tv_like_sets(t text, expression text) RETURNS boolean
LANGUAGE plpgsql STABLE STRICT PARALLEL SAFE AS $$
BEGIN
  IF starts_with(expression, '!') THEN
    PERFORM tv_raise(93, substr(expression, 2));
  END IF;
  RETURN tv_fold(t) ~ expression;
END $$;

-- Most patterns have neither digits nor sets: these are the server's own, but for the names of their
-- marks.
CREATE OR REPLACE FUNCTION tv_like(t text, pattern text) RETURNS boolean
LANGUAGE sql STABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN strpos(pattern, '[') = 0 AND strpos(pattern, '#') = 0
    THEN tv_fold(t) LIKE translate(tv_fold(pattern), '*?', '%_') ESCAPE ''
    ELSE tv_like_sets(t, tv_like_expression(pattern)) END $$;
