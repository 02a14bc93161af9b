// SPDX-License-Identifier: MIT
// One field of a form, by the type of its column.
import { type Column, type Value } from "../model.ts";
import { t } from "../texts.ts";
import { isNumeric, typed, typedDay } from "../values.ts";

interface Props {
  column: Column;
  text: string;
  flag: Value;
  fault: string | undefined;
  isReadOnly: boolean;
  isChanged: boolean;
  setText: (text: string) => void;
  setFlag: (flag: boolean) => void;
  onLeave: () => void;
}

const kWide = 60; // characters from which a field has the whole line

/** Digits, signs and marks into a number, and no key into a full text. What is pasted is cut by nobody: it is
 * told that it is too long. */
function isTypable(event: InputEvent & { currentTarget: HTMLInputElement }, column: Column): boolean {
  const { data, inputType, currentTarget: { value, selectionStart, selectionEnd } } = event;
  if (data === null || data === undefined) return true;
  if (isNumeric(column)) return /^[\d+\-.,\s]*$/.test(data);
  if (column.type === "date") return /^[\d\-./:\sT]*$/.test(data);
  const isKey = inputType === "insertText" && [...data].length === 1 && selectionStart === selectionEnd;
  return !isKey || column.size === 0 || [...value].length < column.size;
}

export function Field({ column, text, flag, fault, isReadOnly, isChanged, setText, setFlag, onLeave }: Props) {
  const { name, label, type, size } = column;
  const faultId = `fault-${name}`;
  const told = {
    name,
    "aria-invalid": fault !== undefined,
    "aria-describedby": fault === undefined ? undefined : faultId,
  };
  const kind = `form-field${isChanged ? " changed" : ""}`;
  const reason = fault !== undefined && <span class="fault" id={faultId} role="alert">{fault}</span>;

  if (type === "flag") {
    return (
      <div class={kind}>
        <label class="check">
          <input type="checkbox" {...told} checked={flag === true || (typeof flag === "number" && flag !== 0)} disabled={isReadOnly}
                 onChange={(event) => setFlag(event.currentTarget.checked)} />
          <span>{label}</span>
        </label>
        {reason}
      </div>
    );
  }
  if (type === "memo" || (type === "text" && text.includes("\n"))) {
    return (
      <label class={`${kind} field whole`}>
        <span>{label}</span>
        <textarea class="input" {...told} rows={4} value={text} readOnly={isReadOnly}
                  onInput={(event) => setText(event.currentTarget.value)} onBlur={onLeave} />
        {reason}
      </label>
    );
  }
  const leave = (): void => {
    // A day typed as 20.11 is shown as it was understood.
    const day = type === "date" && text.trim() !== "" ? typedDay(text) : undefined;
    if (day !== undefined) setText(typed(day, column));
    onLeave();
  };
  return (
    <label class={`${kind} field${type === "text" && size > kWide ? " wide" : ""}`}>
      <span>{label}{column.key && <abbr title={t("keyField")}> *</abbr>}</span>
      <input class={`input${isNumeric(column) ? " number" : ""}`} {...told} value={text} readOnly={isReadOnly} autocomplete="off"
             inputMode={isNumeric(column) ? "decimal" : undefined}
             onBeforeInput={(event) => { if (!isTypable(event, column)) event.preventDefault(); }}
             onInput={(event) => setText(event.currentTarget.value)} onBlur={leave} />
      {reason}
    </label>
  );
}
