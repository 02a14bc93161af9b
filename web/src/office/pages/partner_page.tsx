// SPDX-License-Identifier: MIT
// A customer or a supplier: what is owed first, then the entries, addresses and documents.
import { useState } from "preact/hooks";
import { at, get, query } from "../../shared/api.ts";
import { Show, useAsked, useLoaded } from "../load.tsx";
import type { Values } from "../model.ts";
import { PeriodFields } from "../period.tsx";
import { RowsTable } from "../rows_table.tsx";
import { Facts, Figure, Part, Table } from "../table.tsx";
import { t } from "../texts.ts";
import { day, money } from "../values.ts";
import { formPage } from "../where.ts";
import { TicketTable, type TicketLine } from "./tickets_page.tsx";

interface Entry { day: string | null; text: string; debit: number; credit: number; balance: number; document?: number }
interface Account { entries: Entry[]; balance: number; opening?: number; debit?: number; credit?: number }
interface PartnerAnswer {
  customer?: Values;
  supplier?: Values;
  account?: { balance?: number; limit?: number | null; blocked?: boolean; active?: boolean; entries?: Entry[] };
  addresses?: Values[];
  contacts?: Values[];
  centres?: Values[];
  comments?: Values[];
  prices?: Values[];
  onOrder?: Values[];
}

const text = (value: unknown): string => (value === null || value === undefined ? "" : String(value));

/** A customer's account is told to the tills too, and lies apart from the rest of what is known of him. */
async function readPartner(base: string, signal: AbortSignal): Promise<PartnerAnswer> {
  if (!base.startsWith("/customers/")) return get<PartnerAnswer>(base, signal);
  const [{ account }, details] = await Promise.all([
    get<PartnerAnswer>(base, signal), get<PartnerAnswer>(`${base}/details`, signal),
  ]);
  return { ...details, ...(account && { account }) };
}

export function PartnerPage({ kind, code }: { kind: "customer" | "supplier"; code: string }) {
  const base = kind === "customer" ? at`/customers/${code}` : at`/suppliers/${code}`;
  const asked = useLoaded<PartnerAnswer>(base, readPartner);
  return <Show asked={asked}>{(partner) => <Partner kind={kind} code={code} base={base} partner={partner} />}</Show>;
}

function Partner({ kind, code, base, partner }: { kind: "customer" | "supplier"; code: string; base: string; partner: PartnerAnswer }) {
  const who = partner.customer ?? partner.supplier ?? {};
  const { account = {}, addresses = [], contacts = [], centres = [], prices = [], onOrder = [], comments = [] } = partner;
  const isCustomer = kind === "customer";
  return (
    <>
      <div class="row">
        <h1>{text(who.Razon_Social) || text(who.Nombre) || code}</h1>
        <span class="gap" />
        {isCustomer && <a class="button" href={`/print/account/${encodeURIComponent(code)}`} target="_blank" rel="noopener">{t("printAccount")}</a>}
        <a class="button main" href={formPage(isCustomer ? "ClsClientes" : "ClsProveedores", { Codigo: code })}>{t("edit")}</a>
      </div>
      <div class="figures">
        {account.balance !== undefined &&
          <Figure name={isCustomer ? t("owesUs") : t("weOwe")} value={money(account.balance)} kind={account.balance > 0 ? "main" : "good"} />}
        {typeof account.limit === "number" && account.limit > 0 && <Figure name={t("limit")} value={money(account.limit)} />}
        {account.blocked && <Figure name={t("state")} value={t("blocked")} kind="bad" />}
        {account.active === false && <Figure name={t("state")} value={t("notInUse")} kind="bad" />}
      </div>
      <Facts facts={[
        [t("code"), code], [t("tradeName"), text(who.Nombre)], [t("fiscalNumber"), text(who.NIF)],
        [t("address"), [text(who.Direccion), [text(who.Codigo_Postal), text(who.Poblacion)].filter(Boolean).join(" ")].filter(Boolean).join(", ")],
        [t("phone"), [text(who.Telefono), text(who.Movil)].filter(Boolean).join(" · ")],
        [t("email"), text(who.E_Mail)], [t("tariff"), text(who.Tarifa)], [t("contact"), text(who.Contacto)],
      ]} />
      {text(who.Texto_Aviso) && who.Aviso && <p class="note warn">{text(who.Texto_Aviso)}</p>}
      <AccountPart base={base} told={account.entries ? { entries: account.entries, balance: account.balance ?? 0 } : undefined} isCustomer={isCustomer} />
      <div class="parts">
        {isCustomer && <Documents base={base} />}
        {addresses.length > 0 && <Part title={t("addresses")}><RowsTable label={t("addresses")} rows={addresses} without={["ID", "Codigo"]} className="ClsClientesDirecciones" /></Part>}
        {centres.length > 0 && <Part title={t("centres")}><RowsTable label={t("centres")} rows={centres} without={["ID", "Codigo"]} className="ClsClientesCentros" /></Part>}
        {contacts.length > 0 && <Part title={t("contacts")}><RowsTable label={t("contacts")} rows={contacts} without={["ID", "Codigo"]} className="ClsClientesColaboradores" /></Part>}
        {onOrder.length > 0 && <Part title={t("onOrder")}><RowsTable label={t("onOrder")} rows={onOrder} className="clsArticulos" /></Part>}
        {prices.length > 0 && <Part title={t("prices")}><RowsTable label={t("prices")} rows={prices} without={["Id", isCustomer ? "Cliente" : "Proveedor"]}
          className={isCustomer ? "ClsArticulosPreciosVentas" : "ClsArticulosPrecios"} /></Part>}
        {comments.length > 0 && <Part title={t("comments")}><RowsTable label={t("comments")} rows={comments} without={["Id", "Codigo"]}
          className={isCustomer ? "ClsClientesComentarios" : "ClsProveedoresComentarios"} /></Part>}
      </div>
    </>
  );
}

function AccountPart({ base, told, isCustomer }: { base: string; told: Account | undefined; isCustomer: boolean }) {
  const [period, setPeriod] = useState({ from: "", to: "" });
  const isWhole = period.from === "" && period.to === "";
  const asked = useAsked<Account>(told && isWhole ? undefined
    : `${base}/account${query({ from: period.from || undefined, to: period.to || undefined })}`);
  const account = told && isWhole ? { ...asked, value: told } : asked;
  return (
    <Part title={t("account")} side={(isCustomer || !told) && <PeriodFields period={period} setPeriod={setPeriod} />}>
      <Show asked={account}>
        {({ entries, balance }) => (
          <Table label={t("account")} items={entries} empty={t("noEntries")}
                 columns={[
                   { title: t("day"), cell: (entry) => (entry.day ? day(entry.day) : "") },
                   { title: t("concept"), cell: (entry) => entry.text },
                   { title: t("debit"), isNumber: true, cell: ({ debit }) => (debit === 0 ? "" : money(debit)) },
                   { title: t("credit"), isNumber: true, cell: ({ credit }) => (credit === 0 ? "" : money(credit)) },
                   { title: t("balance"), isNumber: true, cell: (entry) => money(entry.balance) },
                 ]}
                 foot={<tr><th scope="row" colSpan={4}>{t("balance")}</th><td class="number"><b>{money(balance)}</b></td></tr>} />
        )}
      </Show>
    </Part>
  );
}

function Documents({ base }: { base: string }) {
  const asked = useAsked<{ tickets: TicketLine[]; total?: number }>(`${base}/documents`);
  return (
    <Part title={t("documents")}>
      <Show asked={asked}>{({ tickets }) => <TicketTable tickets={tickets} withoutName />}</Show>
    </Part>
  );
}
