// SPDX-License-Identifier: MIT
// A number by keyboard or by touch, and the window that asks for one.
import { useRef, useState } from "preact/hooks";
import { Dialog } from "../shared/dialog.tsx";
import { type Fixed, read } from "../shared/money.ts";
import { session } from "../shared/session.ts";
import { t } from "./texts.ts";

/** Keys for who has no keyboard. They type into the field that is named. */
export function NumberPad({ value, set }: { value: string; set: (value: string) => void }) {
  const { decimal } = session.get().locale;
  return (
    <div class="pad" role="group" aria-label={t("keys")}>
      {["7", "8", "9", "4", "5", "6", "1", "2", "3", "0", decimal].map((key) =>
        <button key={key} type="button" class="button" tabIndex={-1} onClick={() => set(value + key)}>{key}</button>)}
      <button type="button" class="button" tabIndex={-1} onClick={() => set("")}>{t("erase")}</button>
    </div>
  );
}

interface Properties {
  title: string;
  label: string;
  start: string;
  // Gives what is wrong with the number, or "" and takes it.
  accept: (value: Fixed) => string;
  close: () => unknown;
}

export function NumberDialog({ title, label, start, accept, close }: Properties) {
  const [text, setText] = useState(start);
  const [fault, setFault] = useState("");
  const isFresh = useRef(true); // the pad writes over what was there
  const enter = (event: Event) => {
    event.preventDefault();
    const value = read(text, session.get().locale);
    const wrong = value === undefined ? t("notANumber") : accept(value);
    if (wrong === "") close();
    else setFault(wrong);
  };
  return (
    <Dialog title={title} close={close} closeText={t("cancel")} className="narrow">
      <form class="stack" onSubmit={enter}>
        <label class="field">
          <span>{label}</span>
          <input class="input big" data-first inputMode="decimal" autocomplete="off" maxLength={20} value={text}
            aria-invalid={fault !== ""} onFocus={(event) => event.currentTarget.select()}
            onInput={(event) => {
              setText(event.currentTarget.value);
              isFresh.current = false;
            }} />
        </label>
        <p role="alert" class={fault === "" ? "" : "note bad"}>{fault}</p>
        <NumberPad value={isFresh.current ? "" : text} set={(value) => {
          isFresh.current = false;
          setText(value);
        }} />
        <button type="submit" class="button main">{t("accept")}</button>
      </form>
    </Dialog>
  );
}
