// SPDX-License-Identifier: MIT
// Asks the server. Every answer is JSON, errors too; what changes something carries the session's token.

/** What the server says of a fault, or a page of a line that is cut. */
export interface Fault {
  line?: number;
  code?: string;
  field?: string;
  reason: string;
}

/** Why a request did not succeed. `status` is 0 where no answer came: nobody knows what became of it. */
export class RequestError extends Error {
  constructor(
    readonly status: number,
    readonly kind: string,
    message: string,
    readonly faults: Fault[] = [],
    readonly body: Record<string, unknown> = {},
    readonly retryAfter = 0,
  ) {
    super(message);
    this.name = "RequestError";
  }

  /** No answer came, or one that says: later. The same request may be sent again. */
  get isAway(): boolean {
    return this.status === 0 || this.status === 429 || this.status >= 500;
  }
}

export const kDeadline = 15_000; // ms
let token = "";

/** From each answer of /session. */
export const setToken = (value: string): void => {
  token = value;
};

/** A request and its JSON answer; throws RequestError. `signal` gives it up. */
export async function ask<Answer>(method: string, path: string, body?: unknown,
                                  signal?: AbortSignal): Promise<{ status: number; body: Answer }> {
  const headers: Record<string, string> = { Accept: "application/json" };
  if (body !== undefined) headers["Content-Type"] = "application/json";
  if (method !== "GET") headers["X-Tavelor-Token"] = token;
  const deadline = new AbortController();
  const timer = setTimeout(() => deadline.abort(), kDeadline);
  signal?.addEventListener("abort", () => deadline.abort(), { once: true });
  try {
    let status = 0;
    let text = "";
    let retryAfter = 0;
    try {
      const answer = await fetch(`/api/v1${path}`, {
        method, headers, signal: deadline.signal, credentials: "same-origin", cache: "no-store",
        body: body === undefined ? null : JSON.stringify(body),
      });
      status = answer.status;
      retryAfter = Number(answer.headers.get("Retry-After")) || 0;
      text = await answer.text();
    } catch (error) {
      if (signal?.aborted) throw error;
      throw new RequestError(0, "away", "");
    }
    const read = parsed(text);
    if (status >= 200 && status < 300 && read !== undefined) return { status, body: read as Answer };
    // Something else answered, a proxy: nothing is known of the request.
    if (read === undefined) throw new RequestError(status < 400 ? 0 : status, "away", "");
    const error = (read.error ?? {}) as { kind?: string; message?: string; faults?: Fault[] };
    throw new RequestError(status, error.kind ?? "failure", error.message ?? "", error.faults ?? [], read, retryAfter);
  } finally {
    clearTimeout(timer);
  }
}

function parsed(text: string): Record<string, unknown> | undefined {
  if (text === "") return {};
  try {
    const value: unknown = JSON.parse(text);
    return typeof value === "object" && value !== null ? (value as Record<string, unknown>) : undefined;
  } catch {
    return undefined;
  }
}

/** Only the body. */
export const get = async <Answer>(path: string, signal?: AbortSignal): Promise<Answer> =>
  (await ask<Answer>("GET", path, undefined, signal)).body;
export const post = async <Answer>(path: string, body: unknown): Promise<Answer> =>
  (await ask<Answer>("POST", path, body)).body;

/** A path with its parameters: at`/tickets/${17}` escapes what is put in. */
export const at = (parts: TemplateStringsArray, ...values: (string | number)[]): string =>
  parts.reduce((path, part, index) => path + encodeURIComponent(String(values[index - 1])) + part);

/** "?q=pan&most=20"; what is undefined is left out. */
export function query(values: Record<string, string | number | undefined>): string {
  const search = new URLSearchParams();
  for (const [name, value] of Object.entries(values)) if (value !== undefined) search.set(name, String(value));
  const text = search.toString();
  return text === "" ? "" : `?${text}`;
}
