// SPDX-License-Identifier: MIT
// The lines of the sale. One is chosen: the keys mean it.
import { useEffect, useRef } from "preact/hooks";
import { kOne } from "../shared/money.ts";
import { money, plain } from "../shared/session.ts";
import { useStore } from "../shared/store.ts";
import { draft } from "./draft.ts";
import { type Line, lineAmount } from "./sale.ts";
import { removeLine, selected, setLine } from "./state.ts";
import { t } from "./texts.ts";

export function LineList() {
  const { lines } = useStore(draft);
  const chosen = useStore(selected);
  const list = useRef<HTMLDivElement>(null);
  useEffect(() => {
    list.current?.querySelector("[aria-current]")?.scrollIntoView({ block: "nearest" });
  }, [chosen, lines.length]);

  if (lines.length === 0) return <div class="lines none"><p class="soft">{t("noLines")}</p></div>;
  return (
    <div class="lines" ref={list} tabIndex={0} role="region" aria-label={t("lines")}>
      <table>
        <thead>
          <tr>
            <th scope="col">{t("article")}</th>
            <th scope="col" class="number">{t("quantity")}</th>
            <th scope="col" class="number">{t("price")}</th>
            <th scope="col" class="number">{t("discount")}</th>
            <th scope="col" class="number">{t("amount")}</th>
            <th scope="col"><span class="unseen">{t("remove")}</span></th>
          </tr>
        </thead>
        <tbody>
          {lines.map((line) => <LineRow key={line.id} line={line} isChosen={line.id === chosen} />)}
        </tbody>
      </table>
    </div>
  );
}

function LineRow({ line, isChosen }: { line: Line; isChosen: boolean }) {
  // One piece more, or one less; the last one goes by "remove".
  const step = (by: bigint) => {
    selected.set(line.id);
    if (line.quantity + by !== 0n) setLine(line.id, { quantity: line.quantity + by, fault: "" });
  };
  return (
    <tr class={line.fault === "" ? "" : "faulty"} aria-current={isChosen ? "true" : undefined} onClick={() => selected.set(line.id)}>
      <th scope="row">
        <span class="name">{line.description}</span> <span class="code soft">{line.code}</span>
        {!line.isKnown && line.fault === "" && <span class="soft mark" title={t("knownPrice")} role="img" aria-label={t("knownPrice")}>≈</span>}
        {line.fault !== "" && <span class="fault">{t("lineFault", { reason: line.fault })}</span>}
      </th>
      <td class="number quantity">
        <button type="button" class="button step" tabIndex={-1} aria-label={t("less", { name: line.description })} onClick={() => step(-kOne)}>−</button>
        <span>{plain(line.quantity)}</span>
        <button type="button" class="button step" tabIndex={-1} aria-label={t("more", { name: line.description })} onClick={() => step(kOne)}>+</button>
      </td>
      <td class="number">{money(line.price)}</td>
      <td class="number">{line.discount === 0n ? "" : `${plain(line.discount)} %`}</td>
      <td class="number amount">{money(lineAmount(line))}</td>
      <td class="number">
        <button type="button" class="button step bad" tabIndex={-1} aria-label={t("removeOf", { name: line.description })}
          onClick={() => removeLine(line.id)}>×</button>
      </td>
    </tr>
  );
}
