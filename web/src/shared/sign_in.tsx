// SPDX-License-Identifier: MIT
// Who is there, and his PIN: over whatever is on the page, which stays as it is.
import { useEffect, useRef, useState } from "preact/hooks";
import { RequestError } from "./api.ts";
import { Dialog } from "./dialog.tsx";
import { session, signIn } from "./session.ts";
import { useStore } from "./store.ts";
import { textsOf } from "./texts.ts";

const t = textsOf({
  title: "¿Quién eres?",
  employee: "Empleado",
  pin: "PIN",
  enter: "Entrar",
  erase: "Borrar",
  wrong: "El PIN no es ese. Quedan {left} intentos.",
  wrongPlain: "El PIN no es ese.",
  locked: "Demasiados intentos. Espera {seconds} s.",
  away: "El servidor no contesta. Se puede volver a probar.",
  nobody: "Nadie tiene PIN todavía. En el ordenador de la tienda: tavelor pin",
}, {
  title: "Who are you?",
  employee: "Employee",
  pin: "PIN",
  enter: "Sign in",
  erase: "Erase",
  wrong: "That is not the PIN. {left} tries left.",
  wrongPlain: "That is not the PIN.",
  locked: "Too many tries. Wait {seconds} s.",
  away: "The server does not answer. Try again.",
  nobody: "Nobody has a PIN yet. On the shop's computer: tavelor pin",
});

const kPlace = "tavelor.employee";

export function SignIn() {
  const { employees, shop } = useStore(session);
  const kept = localStorage.getItem(kPlace) ?? "";
  const [employee, setEmployee] = useState(kept);
  const [pin, setPin] = useState("");
  const [message, setMessage] = useState("");
  const [wait, setWait] = useState(0);
  const isSending = useRef(false);
  const field = useRef<HTMLInputElement>(null);
  const chosen = employees.some(({ code }) => code === employee) ? employee : employees[0]?.code ?? "";

  useEffect(() => {
    if (wait <= 0) return undefined;
    const timer = setTimeout(() => setWait(wait - 1), 1000);
    return () => clearTimeout(timer);
  }, [wait]);

  const enter = async () => {
    if (isSending.current || wait > 0 || pin === "") return;
    isSending.current = true;
    try {
      localStorage.setItem(kPlace, chosen);
      await signIn(chosen, pin);
    } catch (error) {
      setPin("");
      field.current?.focus();
      if (!(error instanceof RequestError)) throw error;
      const { left } = (error.body.error ?? {}) as { left?: number };
      if (error.status === 423) setWait(error.retryAfter || 30);
      if (error.status === 401) setMessage(left === undefined ? t("wrongPlain") : t("wrong", { left }));
      else if (error.isAway) setMessage(t("away"));
      else setMessage(error.status === 423 ? "" : error.message);
    } finally {
      isSending.current = false;
    }
  };
  const key = (digit: string) => {
    setPin((before) => (before + digit).slice(0, 32));
    setMessage("");
  };

  return (
    <Dialog title={shop.name || t("title")} className="sign-in">
      <form class="stack" onSubmit={(event) => {
        event.preventDefault();
        void enter();
      }}>
        {employees.length === 0 && <p class="note warn">{t("nobody")}</p>}
        <label class="field">
          <span>{t("employee")}</span>
          <select class="input" value={chosen} onChange={(event) => setEmployee(event.currentTarget.value)}>
            {employees.map(({ code, name }) => <option key={code} value={code} selected={code === chosen}>{name || code}</option>)}
          </select>
        </label>
        <label class="field">
          <span>{t("pin")}</span>
          <input ref={field} data-first class="input pin" type="password" inputMode="numeric" autocomplete="off"
            value={pin} maxLength={32} onInput={(event) => setPin(event.currentTarget.value)} />
        </label>
        <div class="pad" role="group" aria-label={t("pin")}>
          {["1", "2", "3", "4", "5", "6", "7", "8", "9"].map((digit) =>
            <button key={digit} type="button" class="button" onClick={() => key(digit)}>{digit}</button>)}
          <button type="button" class="button" onClick={() => setPin("")}>{t("erase")}</button>
          <button type="button" class="button" onClick={() => key("0")}>0</button>
          <button type="submit" class="button main" disabled={wait > 0}>{t("enter")}</button>
        </div>
        <p role="alert" class={message !== "" || wait > 0 ? "note bad" : ""}>
          {wait > 0 ? t("locked", { seconds: wait }) : message}
        </p>
      </form>
    </Dialog>
  );
}
