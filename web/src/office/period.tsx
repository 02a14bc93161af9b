// SPDX-License-Identifier: MIT
// From one day to another, both included.
import { t } from "./texts.ts";
import { day, typedDay } from "./values.ts";

export interface Period { from: string; to: string }

export function PeriodFields({ period, setPeriod }: { period: Period; setPeriod: (period: Period) => void }) {
  const field = (name: keyof Period, label: string) => (
    <label class="row"><span class="label">{label}</span>
      <input class="input narrow" key={period[name]} defaultValue={period[name] && day(period[name])} autocomplete="off"
             onChange={(event) => {
               const text = event.currentTarget.value.trim();
               const wanted = text === "" ? "" : typedDay(text)?.slice(0, 10);
               if (wanted === undefined) event.currentTarget.value = period[name] && day(period[name]);
               else setPeriod({ ...period, [name]: wanted });
             }} />
    </label>
  );
  return <>{field("from", t("from"))}{field("to", t("to"))}</>;
}
