// SPDX-License-Identifier: MIT
// Where one begins: what is asked most, then every list.
import { useAsked } from "../load.tsx";
import type { ClassLine } from "../model.ts";
import { grouped } from "../groups.ts";
import { href } from "../routes.ts";
import { session } from "../../shared/session.ts";
import { type OfficeText, t } from "../texts.ts";
import { money } from "../values.ts";
import { type DayAnswer, takenOf } from "./day_figures.ts";

interface Tile { title: OfficeText; about: OfficeText; address: string }

const kTiles: Tile[] = [
  { title: "customerAccounts", about: "aboutCustomers", address: "#/customers" },
  { title: "supplierAccounts", about: "aboutSuppliers", address: "#/suppliers" },
  { title: "articles", about: "aboutArticles", address: "#/articles" },
  { title: "tickets", about: "aboutTickets", address: "#/tickets" },
  { title: "closings", about: "aboutClosings", address: "#/closings" },
];

export function StartPage({ classes }: { classes: ClassLine[] }) {
  const day = useAsked<DayAnswer>(`/day?day=${session.get().today}`);
  const taken = day.value && takenOf(day.value);
  return (
    <>
      <h1 class="welcome">{t("welcome", { name: session.get().employee?.name ?? "" })}</h1>
      <nav class="tiles" aria-label={t("mostAsked")}>
        <a class="tile main" href="#/day">
          <span class="tile-title">{t("today")}</span>
          <span class="tile-figure">{taken ? money(taken.amount) : "…"}</span>
          <span>{taken ? t("ticketsCount", { count: taken.tickets }) : ""}</span>
        </a>
        {kTiles.map(({ title, about, address }) => (
          <a key={address} class="tile" href={address}>
            <span class="tile-title">{t(title)}</span>
            <span class="soft">{t(about)}</span>
          </a>
        ))}
        <a class="tile" href="/till">
          <span class="tile-title">{t("till")}</span>
          <span class="soft">{t("aboutTill")}</span>
        </a>
      </nav>
      <Lists classes={classes} />
    </>
  );
}

/** Every list of the shop under what it is about. */
export function Lists({ classes, isPage }: { classes: ClassLine[]; isPage?: boolean }) {
  return (
    <section aria-labelledby="lists-title">
      {isPage ? <h1 id="lists-title">{t("lists")}</h1> : <h2 id="lists-title">{t("lists")}</h2>}
      <div class="groups">
        {grouped(classes).map(({ title, items }) => (
          <section key={title} class="group" aria-label={t(title)}>
            {isPage ? <h2>{t(title)}</h2> : <h3>{t(title)}</h3>}
            <ul>
              {items.map((item) => (
                <li key={item.name}>
                  <a href={href`/list/${item.name}`}>{item.title}</a>
                </li>
              ))}
            </ul>
          </section>
        ))}
      </div>
    </section>
  );
}
