// SPDX-License-Identifier: MIT
// The office in a browser: npx playwright test -c tests/office. One shop for all tests, one after another.
import { defineConfig } from "@playwright/test";

export default defineConfig({
  testDir: ".",
  workers: 1,
  fullyParallel: false,
  timeout: 30_000,
  expect: { timeout: 5_000 },
  reporter: "list",
  globalSetup: "./shop.ts",
  use: {
    viewport: { width: 1366, height: 768 },
    locale: "es-ES",
    launchOptions: { executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args: ["--no-sandbox"] },
  },
});
