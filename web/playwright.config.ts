// SPDX-License-Identifier: MIT
// The pages in Debian's Chromium. TAVELOR names the program that serves them.
import { defineConfig } from "@playwright/test";

export default defineConfig({
  testDir: "tests",
  testMatch: "**/*.spec.ts",
  outputDir: "../build/browser",
  reporter: process.env.CI ? "line" : "list",
  workers: 1, // each has a server of its own, and two cores are few
  retries: 1, // a machine that does something else types slower than a scanner
  timeout: 60_000,
  expect: { timeout: 10_000 },
  use: {
    viewport: { width: 1366, height: 768 },
    locale: "es-ES",
    screenshot: "only-on-failure",
    launchOptions: {
      executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
      args: ["--no-first-run", "--disable-dev-shm-usage", ...(process.getuid?.() === 0 ? ["--no-sandbox"] : [])],
    },
  },
});
