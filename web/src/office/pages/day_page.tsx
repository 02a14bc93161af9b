// SPDX-License-Identifier: MIT
// The figures of a day; those of today change while the tills sell.
import { useEffect } from "preact/hooks";
import { daysAfter } from "../../shared/dates.ts";
import { listen } from "../../shared/events.ts";
import { HoursChart } from "../chart.tsx";
import { Show, useLater, useLoaded } from "../load.tsx";
import { go, href } from "../routes.ts";
import { session } from "../../shared/session.ts";
import { Figure, Part, Table } from "../table.tsx";
import { t } from "../texts.ts";
import { day as written, money, quantity, typedDay } from "../values.ts";
import { type Day, readDay, type Share, type SoldArticle, takenOf, type Tax } from "./day_figures.ts";

const kTopArticles = 15;
const kPause = 300; // ms after an event: sales come in bursts

export function DayPage({ search }: { search: URLSearchParams }) {
  const { today } = session.get();
  const day = search.get("day") ?? today;
  const asked = useLoaded<Day>(day, readDay);
  const again = useLater(asked.again, kPause);
  useEffect(() => {
    if (day !== today) return;
    const ends = (["sale", "return", "closing"] as const).map((name) => listen(name, again));
    return () => ends.forEach((end) => end());
  }, [day, today, again]);
  const show = (wanted: string): void => go(wanted === today ? "#/day" : `#/day?day=${wanted}`);

  return (
    <>
      <div class="row">
        <h1>{day === today ? t("today") : written(day)}</h1>
        {day === today && <span class="live">{t("live")}</span>}
        <span class="gap" />
        <button type="button" class="button" onClick={() => show(daysAfter(day, -1))}>‹ {t("dayBefore")}</button>
        <label class="row"><span class="unseen">{t("day")}</span>
          <input class="input narrow" key={day} defaultValue={written(day)} autocomplete="off" aria-label={t("day")}
                 onChange={(event) => {
                   const wanted = typedDay(event.currentTarget.value);
                   if (wanted) show(wanted.slice(0, 10));
                   else event.currentTarget.value = written(day);
                 }} />
        </label>
        <button type="button" class="button" disabled={day >= today} onClick={() => show(daysAfter(day, 1))}>{t("dayAfter")} ›</button>
      </div>
      <Show asked={asked}>{(figures) => <Figures figures={figures} day={day} />}</Show>
    </>
  );
}

function Figures({ figures, day }: { figures: Day; day: string }) {
  const taken = takenOf(figures);
  const best = [...figures.articles].sort((a, b) => b.amount - a.amount).slice(0, kTopArticles);
  const shares = (items: Share[], label: string) => (
    <Table label={label} items={items} empty={t("noSalesYet")}
           columns={[
             { title: t("name"), cell: ({ code, name }: Share) => name || code },
             { title: t("amount"), isNumber: true, cell: ({ total }: Share) => money(total) },
           ]} />
  );
  return (
    <>
      <div class="figures" aria-live="polite">
        <Figure name={t("takings")} value={money(taken.amount)} kind="main" />
        <Figure name={t("tickets")} value={quantity(taken.tickets)} />
        <Figure name={t("perTicket")} value={taken.tickets > 0 ? money(taken.amount / taken.tickets) : "–"} />
        <Figure name={t("notClosedYet")} value={money(figures.open.amount)} />
        
      </div>
      <div class="parts">
        <Part title={t("byHour")} isBroad><HoursChart hours={figures.hours} /></Part>
        <Part title={t("byPayment")}>{shares(figures.payments, t("byPayment"))}</Part>
        <Part title={t("byTill")}>{shares(figures.tills, t("byTill"))}</Part>
        <Part title={t("topArticles")} side={<a href={`#/tickets?day=${day}`}>{t("ticketsOfDay")}</a>}>
          <Table label={t("topArticles")} items={best} empty={t(taken.tickets > 0 ? "onlyClosed" : "noSalesYet")}
                 columns={[
                   { title: t("article"), cell: ({ code, description }: SoldArticle) => <a href={href`/article/${code}`}>{description || code}</a> },
                   { title: t("units"), isNumber: true, cell: ({ units }: SoldArticle) => quantity(units) },
                   { title: t("amount"), isNumber: true, cell: ({ amount }: SoldArticle) => money(amount) },
                 ]} />
        </Part>
        <Part title={t("taxes")}>
          <Table label={t("taxes")} items={figures.taxes} empty={t(taken.tickets > 0 ? "onlyClosed" : "noSalesYet")}
                 columns={[
                   { title: t("rate"), isNumber: true, cell: ({ rate }: Tax) => `${quantity(rate)} %` },
                   { title: t("base"), isNumber: true, cell: ({ base }: Tax) => money(base) },
                   { title: t("tax"), isNumber: true, cell: ({ tax }: Tax) => money(tax) },
                 ]} />
        </Part>
        {figures.closings.length > 0 && <Part title={t("closings")}>
          <Table label={t("closings")} items={figures.closings}
                 columns={[
                   { title: t("number"), cell: ({ number }) => <a href={href`/closing/${number}`}>{number}</a> },
                   { title: t("till"), cell: ({ till }) => till },
                   { title: t("amount"), isNumber: true, cell: ({ sales }) => money(sales) },
                 ]} />
        </Part>}
      </div>
    </>
  );
}
