// SPDX-License-Identifier: MIT
// Prints a page of the server, a receipt or a slip, in a frame that nobody sees.

let frame: HTMLIFrameElement | undefined;

export function print(path: string): void {
  frame?.remove();
  frame = document.createElement("iframe");
  frame.className = "printed";
  frame.title = path;
  frame.tabIndex = -1;
  frame.setAttribute("aria-hidden", "true");
  const printed = frame;
  printed.addEventListener("load", () => {
    printed.dataset.loaded = "true";
    printed.contentWindow?.print();
  }, { once: true });
  printed.src = path;
  document.body.append(printed);
}

const kPlace = "tavelor.print";
export const printsAlways = (): boolean => localStorage.getItem(kPlace) === "1";
export const setPrintsAlways = (value: boolean): void => localStorage.setItem(kPlace, value ? "1" : "0");
