// SPDX-License-Identifier: MIT
// An article with what belongs to it: its prices, where it lies, lots, barcodes, the last movements.
import { at } from "../../shared/api.ts";
import { Show, useAsked } from "../load.tsx";
import type { Values } from "../model.ts";
import { href } from "../routes.ts";
import { Facts, Figure, Part, Table } from "../table.tsx";
import { t } from "../texts.ts";
import { day, money, quantity } from "../values.ts";
import { formPage } from "../where.ts";
import { RowsTable } from "../rows_table.tsx";

interface ArticleAnswer {
  article: Values;
  tariffs?: { tariff: string; name: string | null; price: number | null }[];
  stock?: { warehouse: string | null; name: string; stock: number | null }[];
  lots?: Values[];
  barcodes?: string[];
  purchases?: Values[];
  components?: Values[];
  movements?: Values[];
}

const number = (value: unknown): number => (typeof value === "number" ? value : 0);
const text = (value: unknown): string => (value === null || value === undefined ? "" : String(value));

export function ArticlePage({ code }: { code: string }) {
  const asked = useAsked<ArticleAnswer>(at`/articles/${code}`);
  return (
    <>
      <Show asked={asked}>
        {({ article, tariffs = [], stock = [], lots = [], barcodes = [], purchases = [], components = [], movements = [] }) => (
          <>
            <div class="row">
              <h1>{text(article.Descripcion) || code}</h1>
              <span class="gap" />
              <a class="button main" href={formPage("clsArticulos", { Codigo: code })}>{t("edit")}</a>
            </div>
            <div class="figures">
              <Figure name={t("price")} value={money(tariffs[0]?.price ?? number(article.Tarifa_A))} kind="main" />
              <Figure name={t("stock")} value={quantity(number(article.Existencia))} />
              {typeof article.Precio_Coste === "number" && <Figure name={t("cost")} value={money(article.Precio_Coste)} />}
            </div>
            <Facts facts={[
              [t("code"), code], [t("reference"), text(article.Referencia)], [t("family"), text(article.Familia)],
              [t("maker"), text(article.Fabricante)], [t("tax"), text(article.Impuesto)],
              [t("date"), article.Fecha ? day(text(article.Fecha)) : ""],
              [t("active"), article.Activo ? t("yes") : t("no")],
            ]} />
            <div class="parts">
              <Part title={t("prices")}>
                <Table label={t("prices")} items={tariffs}
                       columns={[
                         { title: t("tariff"), cell: (one) => one.tariff },
                         { title: t("name"), cell: (one) => one.name },
                         { title: t("price"), isNumber: true, cell: (one) => (one.price === null ? "" : money(one.price)) },
                       ]} />
              </Part>
              <Part title={t("stockInPlaces")}>
                <Table label={t("stockInPlaces")} items={stock}
                       columns={[
                         { title: t("warehouse"), cell: (one) => one.name || one.warehouse },
                         { title: t("stock"), isNumber: true, cell: (one) => quantity(one.stock ?? 0) },
                       ]} />
              </Part>
              <Part title={t("barcodes")}>
                {barcodes.length === 0 ? <p class="soft">{t("nothingHere")}</p>
                  : <ul class="chips">{barcodes.map((one) => <li key={one} class="chip">{one}</li>)}</ul>}
              </Part>
              <Part title={t("lots")}><RowsTable label={t("lots")} rows={lots} without={["Codigo"]} className="ClsArticulosLotes" /></Part>
              {purchases.length > 0 && <Part title={t("purchases")}><RowsTable label={t("purchases")} rows={purchases} without={["Codigo", "Id"]} className="ClsArticulosPrecios" /></Part>}
              {components.length > 0 && <Part title={t("components")}><RowsTable label={t("components")} rows={components} without={["Codigo", "Id"]} className="ClsArticulosComponentes" /></Part>}
              <Part title={t("movements")} isBroad side={<a href={`${href`/list/ClsArticulosMovAlmacen`}?${new URLSearchParams({ filter: `Codigo:eq:${code}` })}`}>{t("wholeList")}</a>}>
                <RowsTable label={t("movements")} rows={movements} without={["Codigo", "Id"]} className="ClsArticulosMovAlmacen" />
              </Part>
            </div>
          </>
        )}
      </Show>
    </>
  );
}
