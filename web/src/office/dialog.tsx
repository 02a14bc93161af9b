// SPDX-License-Identifier: MIT
// A dialog over the page: Escape closes it, and the keyboard stays within.
import type { ComponentChildren } from "preact";
import { useEffect, useRef } from "preact/hooks";
import { t } from "./texts.ts";

interface Props {
  title: string;
  onClose: () => void;
  children: ComponentChildren;
  footer?: ComponentChildren;
  isWide?: boolean;
}

export function Dialog({ title, onClose, children, footer, isWide }: Props) {
  const box = useRef<HTMLDialogElement>(null);
  useEffect(() => {
    box.current?.showModal();
  }, []);
  return (
    <dialog ref={box} class={isWide ? "wide" : ""} aria-labelledby="dialog-title"
            onCancel={(event) => { event.preventDefault(); onClose(); }}>
      <header>
        <h2 id="dialog-title">{title}</h2>
        <button type="button" class="button square" onClick={onClose} aria-label={t("close")}>×</button>
      </header>
      <div class="dialog-body">{children}</div>
      {footer && <footer>{footer}</footer>}
    </dialog>
  );
}
