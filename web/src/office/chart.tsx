// SPDX-License-Identifier: MIT
// Bars over the hours of a day, with the same figures as a table for who does not see them.
import { money } from "./values.ts";
import type { Hour } from "./pages/day_figures.ts";
import { t } from "./texts.ts";

// Of the drawing; the page stretches it.
const kWidth = 720;
const kHeight = 180;
const kFoot = 24;
const kTop = 22;

export function HoursChart({ hours }: { hours: Hour[] }) {
  if (hours.length === 0) return <p class="soft">{t("noSalesYet")}</p>;
  const first = Math.min(...hours.map(({ hour }) => hour));
  const last = Math.max(...hours.map(({ hour }) => hour));
  const count = Math.max(8, last - first + 1);
  const most = Math.max(...hours.map(({ amount }) => amount), 0.01);
  const step = kWidth / count;
  const room = kHeight - kFoot - kTop;
  const best = hours.reduce((a, b) => (b.amount > a.amount ? b : a));
  return (
    <figure class="chart">
      <svg viewBox={`0 0 ${kWidth} ${kHeight}`} role="img" aria-label={t("hoursChart", { hour: `${best.hour}:00`, amount: money(best.amount) })}>
        <line x1={0} x2={kWidth} y1={kHeight - kFoot} y2={kHeight - kFoot} class="chart-line" />
        {hours.map(({ hour, tickets, amount }) => {
          const height = Math.max(1, (Math.max(0, amount) / most) * room);
          const left = (hour - first) * step;
          return (
            <g key={hour}>
              <title>{`${hour}:00  ${money(amount)}  ${t("ticketsCount", { count: tickets })}`}</title>
              <rect class={hour === best.hour ? "chart-bar best" : "chart-bar"} x={left + step * 0.12} width={step * 0.76}
                    y={kHeight - kFoot - height} height={height} rx={3} />
              <text class="chart-text" x={left + step / 2} y={kHeight - kFoot - height - 6}>{Math.round(amount)}</text>
              <text class="chart-text" x={left + step / 2} y={kHeight - 6}>{hour}</text>
            </g>
          );
        })}
      </svg>
      <table class="unseen">
        <caption>{t("byHour")}</caption>
        <tbody>
          {hours.map(({ hour, tickets, amount }) => <tr key={hour}><th scope="row">{hour}:00</th><td>{money(amount)}</td><td>{tickets}</td></tr>)}
        </tbody>
      </table>
    </figure>
  );
}
