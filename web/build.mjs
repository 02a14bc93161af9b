// SPDX-License-Identifier: MIT
// Builds the pages into dist/: scripts and styles with a hash in their names, the HTML that names them, and
// manifest.json, by which the program embeds them. --watch builds again at each change.
import * as esbuild from "esbuild";
import { mkdirSync, readFileSync, rmSync, writeFileSync, readdirSync } from "node:fs";
import { basename, extname } from "node:path";
import { gzipSync } from "node:zlib";

// A page: its address, its folder of src/ (main.tsx, page.html), and its file in dist/.
const pages = [
  { path: "/", folder: "office", file: "index.html" },
  { path: "/till", folder: "till", file: "till.html" },
];
const types = {
  ".js": "text/javascript",
  ".css": "text/css",
  ".svg": "image/svg+xml",
  ".html": "text/html",
};
const watching = process.argv.includes("--watch");

rmSync("dist", { recursive: true, force: true });
mkdirSync("dist");

function typeOf(file) {
  const type = types[extname(file)];
  if (!type) throw new Error(`dist/${file}: no type is known of such a file; tell it in build.mjs`);
  return type;
}

// What esbuild has made of one page's main.tsx: the script, its style, and nothing else of other pages.
function outputsOf(meta, folder) {
  for (const [path, output] of Object.entries(meta.outputs)) {
    if (output.entryPoint === `src/${folder}/main.tsx`) {
      return { script: basename(path), style: output.cssBundle && basename(output.cssBundle) };
    }
  }
  throw new Error(`src/${folder}/main.tsx was not built`);
}

function writePages(meta) {
  const icon = Object.keys(meta.outputs).map((path) => basename(path)).find((file) => file.endsWith(".svg"));
  for (const page of pages) {
    const { script, style } = outputsOf(meta, page.folder);
    const html = readFileSync(`src/${page.folder}/page.html`, "utf8")
      .replace("{{style}}", `/assets/${style}`)
      .replace("{{script}}", `/assets/${script}`)
      .replace("{{icon}}", `/assets/${icon}`);
    if (html.includes("{{")) throw new Error(`src/${page.folder}/page.html: a place is left unfilled`);
    writeFileSync(`dist/${page.file}`, html);
  }
  const named = new Set(pages.map((page) => page.file));
  const assets = readdirSync("dist").filter((file) => !named.has(file) && file !== "manifest.json" && file !== "stamp").sort();
  writeFileSync("dist/manifest.json", JSON.stringify([
    ...pages.map((page) => ({ path: page.path, file: page.file, type: "text/html", immutable: false })),
    ...assets.map((file) => ({ path: `/assets/${file}`, file, type: typeOf(file), immutable: true })),
  ], null, 1) + "\n");
  // What a page costs on the line, as far as it is known here: nothing is loaded later.
  for (const page of pages) {
    const { script, style } = outputsOf(meta, page.folder);
    const bytes = [page.file, script, style, icon].filter(Boolean)
      .reduce((sum, file) => sum + gzipSync(readFileSync(`dist/${file}`)).length, 0);
    console.log(`${page.path}: ${(bytes / 1000).toFixed(1)} kB compressed`);
  }
}

const options = {
  entryPoints: [...pages.map((page) => `src/${page.folder}/main.tsx`), "src/shared/icon.svg"],
  outdir: "dist",
  entryNames: "[dir]-[hash]",
  outbase: "src",
  bundle: true,
  format: "esm",
  target: "es2022",
  jsx: "automatic",
  jsxImportSource: "preact",
  minify: !watching,
  legalComments: "none",
  loader: { ".svg": "copy" },
  metafile: true,
  logLevel: "warning",
  plugins: [{
    name: "pages",
    setup: (build) => build.onEnd((result) => result.errors.length === 0 && writePages(result.metafile)),
  }],
};

if (watching) await (await esbuild.context(options)).watch();
else await esbuild.build(options);
