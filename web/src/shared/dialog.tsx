// SPDX-License-Identifier: MIT
// A window over the page, of the browser's own kind: it keeps the focus inside, and Escape closes it.
import type { ComponentChildren } from "preact";
import { useId, useLayoutEffect, useRef } from "preact/hooks";

interface Properties {
  title: string;
  close?: () => unknown; // without it, it cannot be closed
  closeText?: string;
  className?: string;
  footer?: ComponentChildren;
  children: ComponentChildren;
}

export function Dialog({ title, close, closeText = "", className = "", footer, children }: Properties) {
  const element = useRef<HTMLDialogElement>(null);
  const heading = useId();
  // Before the next key: who types ahead types into the window.
  useLayoutEffect(() => {
    const dialog = element.current;
    if (!dialog) return undefined;
    dialog.showModal();
    return () => {
      dialog.close(); // which gives the focus back
      // Closed within the key that closes it, Chromium leaves the field without its caret, and typing is lost.
      const field = document.activeElement;
      if (!(field instanceof HTMLElement) || field === document.body) return;
      field.blur();
      field.focus();
    };
  }, []);
  // What is meant to have the focus, once it is there: it may come with an answer. Until then the browser chooses.
  const isFocused = useRef(false);
  useLayoutEffect(() => {
    const first = isFocused.current ? null : element.current?.querySelector<HTMLElement>("[data-first]");
    if (!first) return;
    isFocused.current = true;
    first.focus();
  });
  return (
    <dialog ref={element} class={className} aria-labelledby={heading}
      onCancel={(event) => {
        event.preventDefault();
        close?.();
      }}>
      <header>
        <h1 id={heading}>{title}</h1>
        {close && <button type="button" class="button" onClick={close}>{closeText} <kbd>Esc</kbd></button>}
      </header>
      <div class="stack body">{children}</div>
      {footer && <footer>{footer}</footer>}
    </dialog>
  );
}
