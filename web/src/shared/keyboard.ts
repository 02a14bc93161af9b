// SPDX-License-Identifier: MIT
// Function keys, and the scanner, which types faster than any hand and ends with Enter.

const kFastest = 35;  // ms between two keys of a hand, at least
const kShortest = 6;  // characters of a code: what is shorter may be a hand's

/** Calls for keys: {"F8": pay, "Control+F9": closing}. Gives back what ends it. */
export function shortcuts(keys: () => Record<string, () => void>): () => void {
  const listen = (event: KeyboardEvent) => {
    if (event.repeat || event.isComposing) return;
    const name = (event.ctrlKey ? "Control+" : "") + (event.altKey ? "Alt+" : "") + event.key;
    const call = keys()[name];
    if (!call) return;
    event.preventDefault();
    event.stopPropagation();
    call();
  };
  addEventListener("keydown", listen, true);
  return () => removeEventListener("keydown", listen, true);
}

/**
 * Calls `scanned` with what a scanner types, whatever has the focus; a field that took the first
 * characters gets its text back. `listens` says whether it is to look at all.
 */
export function scanner(scanned: (text: string) => void, listens: (target: EventTarget | null) => boolean): () => void {
  let text = "";
  let last = 0;
  let field: HTMLInputElement | undefined;
  let before = "";
  const listen = (event: KeyboardEvent) => {
    const isFast = event.timeStamp - last < kFastest;
    last = event.timeStamp;
    if (event.ctrlKey || event.altKey || event.metaKey || event.isComposing) {
      text = "";
      return;
    }
    if (event.key === "Enter") {
      const whole = text;
      text = "";
      if (!isFast || whole.length < kShortest || !listens(event.target)) return;
      event.preventDefault();
      event.stopImmediatePropagation();
      if (field) {
        field.value = before;
        field.dispatchEvent(new Event("input", { bubbles: true }));
      }
      scanned(whole);
      return;
    }
    if (event.key.length !== 1) return; // Shift and its like, between two characters
    if (!isFast || text === "") {
      text = "";
      field = event.target instanceof HTMLInputElement ? event.target : undefined;
      before = field?.value ?? "";
    }
    text += event.key;
  };
  addEventListener("keydown", listen, true);
  return () => removeEventListener("keydown", listen, true);
}
