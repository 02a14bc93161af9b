// SPDX-License-Identifier: MIT
// The till: what is kept is opened first, then the page is drawn, then the server is asked.
import "../shared/base.css";
import "./till.css";
import { render } from "preact";
import { loadSession } from "../shared/session.ts";
import { App } from "./app.tsx";
import { openDraft } from "./draft.ts";
import { openKnown } from "./known.ts";
import { watchSales } from "./last_sale.tsx";
import { openOutbox } from "./outbox.ts";
import { searchTimes } from "./search_box.tsx";
import { watchPrices, watchServer } from "./state.ts";

async function start(page: HTMLElement): Promise<void> {
  const asked = loadSession();
  await openDraft();
  await openKnown();
  await asked;
  watchSales();
  await openOutbox();
  watchPrices();
  watchServer(loadSession);
  render(<App />, page);
}

Object.assign(globalThis, { tavelor: { searchTimes } });
const page = document.getElementById("page");
if (page) void start(page);
