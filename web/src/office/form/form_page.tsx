// SPDX-License-Identifier: MIT
// The form of a record of any class: its fields are the columns that the server tells.
import { useEffect, useMemo, useRef, useState } from "preact/hooks";
import { ask, RequestError } from "../../shared/api.ts";
import { listen } from "../../shared/events.ts";
import { shortcuts } from "../../shared/keyboard.ts";
import { Dialog } from "../../shared/dialog.tsx";
import { reasonOf, Show, Trouble, useAsked } from "../load.tsx";
import type { ClassInfo, Column, Key, RecordAnswer, Values } from "../model.ts";
import { classPath, recordPath } from "../paths.ts";
import { askBeforeLeaving, go, href, tellAddress } from "../routes.ts";
import { t } from "../texts.ts";
import { formPage } from "../where.ts";
import { readValue, typed } from "../values.ts";
import { Conflict } from "./conflict.tsx";
import { Field } from "./field.tsx";

const kManyFields = 24; // beyond, a box looks for a field

/** `key` is undefined for a record that is not there yet. */
export function FormPage({ name, keyText }: { name: string; keyText: string | undefined }) {
  const info = useAsked<ClassInfo>(classPath(name));
  const key = useMemo(() => keyOfText(keyText), [keyText]);
  const record = useAsked<RecordAnswer>(key ? recordPath(name, key) : keyText === undefined ? `${classPath(name)}/new` : undefined);
  if (keyText !== undefined && !key) return <Trouble error={new Error(t("noKey"))} />;
  return (
    <Show asked={info}>
      {(known) => <Show asked={record}>{(read) => <Form key={keyText ?? "new"} info={known} record={read} isNew={!key} reread={record.again} />}</Show>}
    </Show>
  );
}

function keyOfText(text: string | undefined): Key | undefined {
  try {
    const key: unknown = JSON.parse(text ?? "");
    return typeof key === "object" && key !== null ? (key as Key) : undefined;
  } catch {
    return undefined;
  }
}

type Texts = Record<string, string>;

const textsOf = (columns: Column[], values: Values): Texts =>
  Object.fromEntries(columns.map((column) => [column.name, typed(values[column.name] ?? null, column)]));

interface Props {
  info: ClassInfo;
  record: RecordAnswer;
  isNew: boolean;
  reread: () => void;
}

function Form({ info, record, isNew, reread }: Props) {
  const columns = (record.columns ?? info.columns).filter(({ hidden, type }) => !hidden && type !== "binary");
  const [stored, setStored] = useState(record);
  const [flags, setFlags] = useState<Values>({});
  const [texts, setTexts] = useState<Texts>(() => textsOf(columns, record.values));
  const [faults, setFaults] = useState<Record<string, string>>({});
  const [error, setError] = useState<unknown>();
  const [note, setNote] = useState("");
  const [theirs, setTheirs] = useState<Values | undefined>();
  const [isAsking, setAsking] = useState(false);
  const [isBusy, setBusy] = useState(false);
  const [isOld, setOld] = useState(false);
  const [wanted, setWanted] = useState("");
  const page = useRef<HTMLFormElement>(null);
  const { name } = info;
  const { canWrite } = info;

  function take(fresh: RecordAnswer): void {
    setStored(fresh);
    setTexts(textsOf(columns, fresh.values));
    setFlags({});
    setFaults({});
    setOld(false);
  }
  // Read once more. Not at the beginning: an effect runs late, and somebody may have typed by then.
  const taken = useRef(record);
  useEffect(() => {
    if (taken.current === record) return;
    taken.current = record;
    take(record);
  }, [record]);

  /** What differs from what was read, and what of it does not read. */
  function changes(): { values: Values; wrong: Record<string, string> } {
    const values: Values = {};
    const wrong: Record<string, string> = {};
    for (const column of columns) {
      const before = stored.values[column.name] ?? null;
      if (column.type === "flag") {
        const flag = flags[column.name];
        if (flag !== undefined && flag !== before) values[column.name] = flag;
        continue;
      }
      const text = texts[column.name] ?? "";
      if (text === typed(before, column)) continue;
      const read = readValue(text, column, before);
      if ("fault" in read) wrong[column.name] = read.fault;
      else if (read.value !== before) values[column.name] = read.value;
    }
    return { values, wrong };
  }
  const pending = changes();
  const isChanged = Object.keys(pending.values).length + Object.keys(pending.wrong).length > 0;

  const isDone = useRef(false); // stored or deleted, and on the way to another page
  const hasPending = useRef(false);
  hasPending.current = isChanged && canWrite && !isDone.current;
  useEffect(() => {
    const release = askBeforeLeaving(() => !hasPending.current || confirm(t("leaveChanges")));
    const unload = (event: BeforeUnloadEvent): void => { if (hasPending.current) event.preventDefault(); };
    addEventListener("beforeunload", unload);
    return () => { release(); removeEventListener("beforeunload", unload); };
  }, []);

  useEffect(() => {
    page.current?.querySelector<HTMLElement>(".fields input:not([readonly], :disabled), .fields textarea:not([readonly])")?.focus();
  }, []);

  const isBusyNow = useRef(false);
  isBusyNow.current = isBusy;
  useEffect(() => listen("change", (event) => {
    if (event.class === name && JSON.stringify(event.key) === JSON.stringify(stored.key) && !isBusyNow.current) setOld(true);
  }), [name, stored.key]);

  async function during(work: () => Promise<void>): Promise<void> {
    if (isBusyNow.current) return;
    setBusy(true);
    setError(undefined);
    setNote("");
    try {
      await work();
    } catch (reason) {
      const newer = reason instanceof RequestError && reason.status === 409 ? reason.body.theirs : undefined;
      if (newer && typeof newer === "object") {
        setTheirs(newer as Values);
      } else {
        if (reason instanceof RequestError) setFaults(byField(reason, columns));
        setError(reason);
      }
    } finally {
      setBusy(false);
    }
  }

  function send(original: Values, values: Values): Promise<void> {
    return during(async () => {
      if (isNew) {
        // Only what was typed: the class begins the row once more, with a code that is free by then.
        const made = (await ask<RecordAnswer>("POST", `${classPath(name)}/records`, { values })).body;
        isDone.current = true;
        hasPending.current = false;
        go(formPage(name, made.key ?? []));
        return;
      }
      const body = { key: stored.key, original, values };
      const answer = (await ask<RecordAnswer>("PATCH", `${classPath(name)}/record`, body)).body;
      take({ ...stored, ...answer });
      if (answer.key) tellAddress(formPage(name, answer.key)); // its code may be another one now
      setTheirs(undefined);
      setNote(t("stored"));
    });
  }

  function store(): void {
    const { values, wrong } = changes();
    setFaults(wrong);
    const first = Object.keys(wrong)[0];
    if (first !== undefined) {
      page.current?.querySelector<HTMLElement>(`[name="${CSS.escape(first)}"]`)?.focus();
      return;
    }
    if (!isNew && Object.keys(values).length === 0) return setNote(t("nothingChanged"));
    void send(stored.values, values);
  }

  const remove = (): Promise<void> => during(async () => {
    setAsking(false);
    await ask("DELETE", `${classPath(name)}/record`, { key: stored.key, original: stored.values });
    isDone.current = true;
    hasPending.current = false;
    go(href`/list/${name}`);
  });

  // Wherever the keyboard is: after a click beside a field it is in none.
  const keys = useRef<Record<string, () => void>>({});
  const isPlain = !theirs && !isAsking;
  keys.current = isPlain ? { "Control+s": () => canWrite && store(), Escape: () => history.back() } : {};
  useEffect(() => shortcuts(() => (document.querySelector("dialog[open]") ? {} : keys.current)), []);

  const few = wanted.trim().toLowerCase();
  const seen = columns.filter(({ label, name: column }) =>
    few === "" || label.toLowerCase().includes(few) || column.toLowerCase().includes(few));
  const title = isNew ? t("newOf", { title: info.title })
    : Object.values(stored.key ?? {}).map(String).join(" · ");

  return (
    <form class="form-page" ref={page} noValidate onSubmit={(event) => { event.preventDefault(); if (canWrite) store(); }}>
      <div class="row form-head">
        <p class="soft"><a href={href`/list/${name}`}>{info.title}</a></p>
        <h1>{title}</h1>
        <span class="gap" />
        {columns.length > kManyFields && (
          <input class="input narrow-wide" type="search" value={wanted} placeholder={t("findField")} aria-label={t("findField")}
                 onInput={(event) => setWanted(event.currentTarget.value)} />
        )}
      </div>
      {error !== undefined && <Trouble error={error} />}
      {note && <p class="note good" role="status">{note}</p>}
      {isOld && !theirs && (
        <div class="note warn row" role="status">
          <span>{t("changedElsewhere")}</span>
          <button type="button" class="button" onClick={reread}>{t("readAgain")}</button>
        </div>
      )}
      {!canWrite && <p class="note">{t("onlyRead")} {info.whyNot}</p>}
      <div class="fields">
        {seen.map((column) => (
          <Field key={column.name} column={column} text={texts[column.name] ?? ""} isReadOnly={!canWrite || (column.writable === false && !(isNew && column.key))}
                 flag={(flags[column.name] ?? stored.values[column.name] ?? null)} fault={faults[column.name]}
                 isChanged={column.name in pending.values || column.name in pending.wrong}
                 setText={(text) => { setTexts((old) => ({ ...old, [column.name]: text })); setNote(""); }}
                 setFlag={(flag) => { setFlags((old) => ({ ...old, [column.name]: flag })); setNote(""); }}
                 onLeave={() => setFaults(({ [column.name]: _, ...others }) => {
                   const fault = changes().wrong[column.name];
                   return fault ? { ...others, [column.name]: fault } : others;
                 })} />
        ))}
      </div>
      <div class="row form-foot">
        {canWrite && <button type="submit" class="button main" disabled={isBusy}>{t("store")} <kbd>Ctrl+S</kbd></button>}
        {canWrite && isChanged && !isNew && <button type="button" class="button" onClick={() => take(stored)}>{t("undo")}</button>}
        <button type="button" class="button" onClick={() => history.back()}>{t("back")} <kbd>Esc</kbd></button>
        <span class="gap" />
        {canWrite && !isNew && <button type="button" class="button bad" disabled={isBusy} onClick={() => setAsking(true)}>{t("remove")}</button>}
      </div>
      {isAsking && (
        <Dialog title={t("removeQuestion")} close={() => setAsking(false)} closeText={t("close")}
                footer={<>
                  <button type="button" class="button" onClick={() => setAsking(false)}>{t("keep")}</button>
                  <button type="button" class="button bad" onClick={() => void remove()}>{t("remove")}</button>
                </>}>
          <p>{t("removeMeaning", { title })}</p>
        </Dialog>
      )}
      {theirs && (
        <Conflict columns={columns} before={stored.values} mine={pending.values} theirs={theirs} error={error !== undefined ? reasonOf(error) : ""}
                  onClose={() => setTheirs(undefined)}
                  onStore={(values) => {
                    if (Object.keys(values).length > 0) return void send(theirs, values);
                    take({ ...stored, values: theirs });
                    setTheirs(undefined);
                    setNote(t("tookTheirs"));
                  }} />
      )}
    </form>
  );
}

/** Faults that name a column, by it. */
function byField(error: RequestError, columns: Column[]): Record<string, string> {
  const found = error.faults.flatMap(({ field, reason }) => {
    const column = columns.find(({ name }) => name.toLowerCase() === field?.toLowerCase());
    return column ? [[column.name, reason] as const] : [];
  });
  return Object.fromEntries(found);
}
