// SPDX-License-Identifier: MIT
// The list of a class, whichever it is: its modes, columns, order and filters are what the server tells.
import { useCallback, useEffect, useMemo, useRef, useState } from "preact/hooks";
import { get, query } from "../../shared/api.ts";
import { listen } from "../../shared/events.ts";
import { quantity } from "../values.ts";
import { Show, Trouble, useAsked, useLater } from "../load.tsx";
import type { ClassInfo, Column, RowsAnswer, View } from "../model.ts";
import { classPath, keyOf } from "../paths.ts";
import { go, href, tellAddress } from "../routes.ts";
import { t } from "../texts.ts";
import { recordPage } from "../where.ts";
import { ColumnChooser } from "./columns.tsx";
import { type Filter, filterOf, filterText } from "./filter.ts";
import { Filters } from "./filters.tsx";
import { type Cell, Grid, type Order } from "./grid.tsx";
import { RowStore } from "./row_store.ts";
import { arranged, type ShownColumn, storeView } from "./view.ts";

const kWholeTable = "todos";

// Where the keyboard stood in each list, for who comes back to it.
const placesLeft = new Map<string, Cell>();

export function ListPage({ name, search }: { name: string; search: URLSearchParams }) {
  const mode = search.get("mode") ?? kWholeTable;
  const info = useAsked<ClassInfo>(`${classPath(name)}${query({ mode })}`);
  return <Show asked={info}>{(known) => <List key={`${name} ${mode}`} info={known} mode={mode} search={search} />}</Show>;
}

function orderText(order: Order | undefined): string | undefined {
  return order && (order.descending ? `${order.column}:desc` : order.column);
}

function orderOf(text: string | null, view: View): Order | undefined {
  if (text !== null) {
    const descending = text.endsWith(":desc");
    return text === "" ? undefined : { column: descending ? text.slice(0, -5) : text, descending };
  }
  return view.order?.column ? view.order : undefined;
}

interface Props {
  info: ClassInfo;
  mode: string;
  search: URLSearchParams;
}

function List({ info, mode, search }: Props) {
  const { name, title, view = {} } = info;
  const [id, setId] = useState(search.get("id") ?? "");
  const [order, setOrder] = useState(() => orderOf(search.get("order"), view));
  const [filters, setFilters] = useState(() => search.getAll("filter").flatMap((text) => filterOf(text) ?? []));
  const [columns, setColumns] = useState<ShownColumn[] | undefined>();
  const [isChoosing, setChoosing] = useState(false);
  const [filterColumn, setFilterColumn] = useState("");
  const [, drawAgain] = useState(0);
  const filterField = useRef<HTMLInputElement>(null);

  const address = useMemo(() => {
    const values = new URLSearchParams();
    if (mode !== kWholeTable) values.set("mode", mode);
    if (id !== "") values.set("id", id);
    const byOrder = orderText(order);
    if (byOrder !== undefined) values.set("order", byOrder);
    for (const filter of filters) values.append("filter", filterText(filter));
    const text = values.toString();
    return href`/list/${name}` + (text === "" ? "" : `?${text}`);
  }, [name, mode, id, order, filters]);
  const [cell, setCell] = useState<Cell>(() => placesLeft.get(address) ?? { row: 0, at: 0 });
  useEffect(() => tellAddress(address), [address]);
  useEffect(() => { placesLeft.set(address, cell); }, [address, cell]);

  const store = useMemo(() => {
    const asked = (offset: number, limit: number, signal: AbortSignal, isFresh: boolean): Promise<RowsAnswer> => {
      const narrowed = filters.map((filter) => `&${new URLSearchParams({ filter: filterText(filter) })}`).join("");
      const rest = query({ mode, id: id || undefined, order: orderText(order), offset, limit, fresh: isFresh ? "true" : undefined });
      return get<RowsAnswer>(`${classPath(name)}/rows${rest}${narrowed}`, signal);
    };
    return new RowStore(asked, () => drawAgain((old) => old + 1));
  }, [name, mode, id, order, filters]);
  useEffect(() => () => store.drop(), [store]);
  // Many changes in a row, of a delivery, are one look at the rows.
  const refresh = useLater(() => store.refresh(), 400);
  useEffect(() => listen("change", (event) => { if (event.class === name) refresh(); }), [name, refresh]);

  // The columns stay while other rows come.
  const [rowColumns, setRowColumns] = useState<Column[]>(info.columns);
  useEffect(() => {
    if (store.columns.length > 0 && store.columns !== rowColumns) {
      const isSame = columns !== undefined && store.columns.length === rowColumns.length &&
        store.columns.every((column, at) => column.name === rowColumns[at]!.name);
      if (isSame) return;
      setRowColumns(store.columns);
      setColumns(arranged(store.columns, view));
    }
  });

  const remember = useLater(() => {
    const kept = (columns ?? []).map(({ column, visible, width }) => ({ name: column.name, visible, width }));
    storeView(name, mode, { columns: kept, order: order ?? null }).catch(() => undefined); // next time, then
  }, 600);
  const change = (wanted: ShownColumn[]): void => { setColumns(wanted); remember(); };

  function orderBy(column: Column): void {
    const isSame = order?.column === column.name;
    setOrder({ column: column.name, descending: isSame && !order.descending });
    setCell({ row: cell.row < 0 ? -1 : 0, at: cell.at });
    remember();
  }

  function open(row: number): void {
    const values = store.row(row);
    if (!values) return;
    const key = keyOf(store.columns, values);
    if (key) go(recordPage(name, key));
  }

  const narrow = (wanted: Filter[]): void => { setFilters(wanted); setCell({ row: 0, at: cell.at }); };
  const want = useCallback((first: number, last: number) => store.want(first, last), [store]);
  const visible = (columns ?? []).filter(({ visible: isShown }) => isShown);
  const canAdd = info.canWrite;
  const newAddress = href`/list/${name}/new`;

  function pressed(event: KeyboardEvent): void {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    if (event.key === "Insert" && canAdd) go(newAddress);
    else if (event.key === "F5") store.refresh();
    else if (event.key === "/" || event.key === "f") {
      setFilterColumn(visible[cell.at]?.column.name ?? "");
      filterField.current?.focus();
    } else return;
    event.preventDefault();
  }

  return (
    <section class="list-page" aria-labelledby="list-title">
      <div class="row list-head">
        <h1 id="list-title">{title}</h1>
        <span class="soft" role="status">{store.total === undefined ? t("waiting") : t("rowsOf", { count: quantity(store.total) })}</span>
        <span class="gap" />
        <label class="row">
          <span class="label">{t("mode")}</span>
          <select class="input" value={mode}
                  onChange={(event) => go(`${href`/list/${name}`}?${new URLSearchParams({ mode: event.currentTarget.value })}`)}>
            {[...new Set([kWholeTable, ...info.modes])].map((word) => <option key={word} value={word}>{word}</option>)}
          </select>
        </label>
        {info.modesWithId?.includes(mode) && (
          <label class="row">
            <span class="label">{t("ofCode")}</span>
            <input class="input narrow" value={id} autocomplete="off" onChange={(event) => { setId(event.currentTarget.value); setCell({ row: 0, at: 0 }); }} />
          </label>
        )}
        <button type="button" class="button" onClick={() => setChoosing(true)}>{t("columns")}</button>
        {canAdd && <a class="button main" href={newAddress}>{t("newOne")} <kbd>Ins</kbd></a>}
      </div>
      <Filters columns={rowColumns.filter(({ hidden, type }) => !hidden && type !== "binary")} filters={filters} setFilters={narrow} chosen={filterColumn}
               setChosen={setFilterColumn} valueField={filterField} />
      {store.error !== undefined && <Trouble error={store.error} again={() => store.refresh()} />}
      {columns && (
        <Grid label={title} columns={visible} total={store.total ?? 0} rowAt={(row) => store.row(row)}
              want={want} order={order} cell={cell} setCell={setCell} onOrder={orderBy} onOpen={open} onKey={pressed}
              onWidth={(column, width) => change(columns.map((one) => (one.column.name === column.name ? { ...one, width } : one)))} />
      )}
      {store.total === 0 && <p class="note">{filters.length > 0 ? t("noRowsFiltered") : t("noRows")}</p>}
      <p class="soft keys">{t("listKeys")}</p>
      {isChoosing && columns && (
        <ColumnChooser columns={columns} setColumns={change} onClose={() => setChoosing(false)}
                       onUsual={() => change(arranged(rowColumns, {}))} />
      )}
    </section>
  );
}
