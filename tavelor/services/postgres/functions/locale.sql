-- SPDX-License-Identifier: MIT
-- How the session's country writes numbers, dates and money: its custom settings tavelor.*, or those
-- of Spain where tavelor.locale is not set. Names of days and months are parted by |.

CREATE OR REPLACE FUNCTION tv_locale(key text) RETURNS text
LANGUAGE sql STABLE PARALLEL SAFE AS $$
  SELECT CASE WHEN coalesce(current_setting('tavelor.locale', true), '') <> ''
    THEN current_setting('tavelor.' || key, true)
    ELSE CASE key
      WHEN 'decimal' THEN ','
      WHEN 'thousands' THEN '.'
      WHEN 'currency' THEN '€'
      WHEN 'currency_behind' THEN '1'
      WHEN 'date_separator' THEN '/'
      WHEN 'time_separator' THEN ':'
      WHEN 'date_order' THEN 'dmy'
      WHEN 'short_date' THEN 'dd/mm/yyyy'
      WHEN 'long_date' THEN 'dddd, d \d\e mmmm \d\e yyyy'
      WHEN 'long_time' THEN 'h:nn:ss'
      WHEN 'short_time' THEN 'h:nn'
      WHEN 'days' THEN 'domingo|lunes|martes|miércoles|jueves|viernes|sábado'
      WHEN 'short_days' THEN 'dom|lun|mar|mié|jue|vie|sáb'
      WHEN 'months' THEN 'enero|febrero|marzo|abril|mayo|junio|julio|agosto|septiembre|octubre|noviembre|diciembre'
      WHEN 'short_months' THEN 'ene|feb|mar|abr|may|jun|jul|ago|sep|oct|nov|dic'
      WHEN 'yes_text' THEN 'Sí'
      WHEN 'no_text' THEN 'No'
      WHEN 'true_text' THEN 'Verdadero'
      WHEN 'false_text' THEN 'Falso'
      WHEN 'on_text' THEN 'Activado'
      WHEN 'off_text' THEN 'Desactivado'
    END END $$;
