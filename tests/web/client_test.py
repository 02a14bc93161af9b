#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A program in another language that knows the server by its description only.

Starts `tavelor serve` over a shop of its own, signs in by a key, and works: by the paths of
openapi.json it adds an article, reads it back, meets a conflict, lists, sells and asks again.

    tests/web/client_test.py build/release/tools/tavelor
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import urllib.error
import urllib.parse
import urllib.request

TAVELOR = sys.argv.pop(1) if len(sys.argv) > 1 else "tavelor"


class Client:
    """Calls operations by their names, as the description tells where they are."""

    def __init__(self, url, key):
        self.url, self.key = url.rstrip("/"), key
        self.operations = {}
        self.description = self.send("GET", "/api/v1/openapi.json")[1]
        for path, methods in self.description["paths"].items():
            for method, operation in methods.items():
                self.operations[operation["operationId"]] = (method.upper(), path, operation)

    def send(self, method, target, body=None):
        request = urllib.request.Request(self.url + target, method=method)
        request.add_header("Authorization", "Bearer " + self.key)
        data = None
        if body is not None:
            request.add_header("Content-Type", "application/json")
            data = json.dumps(body).encode()
        try:
            with urllib.request.urlopen(request, data, timeout=20) as answer:
                return answer.status, json.load(answer)
        except urllib.error.HTTPError as error:
            return error.code, json.load(error)

    def call(self, called, body=None, /, **values):
        method, path, operation = self.operations[called]
        query = {}
        for parameter in operation["parameters"]:
            value = values.pop(parameter["name"], None)
            if value is None:
                assert not parameter["required"], parameter["name"]
            elif parameter["in"] == "path":
                path = path.replace("{%s}" % parameter["name"], urllib.parse.quote(value, safe=""))
            else:
                query[parameter["name"]] = value
        assert not values, f"{called} takes no {list(values)}"
        target = path + ("?" + urllib.parse.urlencode(query, doseq=True) if query else "")
        return self.send(method, target, body)


class ClientTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        shop = str(pathlib.Path(cls.folder.name) / "shop")
        subprocess.run([TAVELOR, "new", shop], check=True, capture_output=True)
        subprocess.run([TAVELOR, "seed", "--in", shop], check=False, capture_output=True)
        made = subprocess.run(
            [TAVELOR, "key", "client", "--rights", "office.* till.*", "--in", shop],
            check=True, capture_output=True, text=True)
        cls.server = subprocess.Popen(
            [TAVELOR, "serve", shop, "--port", "0", "--log", "-"],
            stdout=subprocess.PIPE, text=True)
        url = re.search(r"https?://\S+?/", cls.server.stdout.readline()).group()
        cls.url = url
        cls.client = Client(url, re.search(r"tvk_\S+", made.stdout).group())

    @classmethod
    def tearDownClass(cls):
        cls.server.terminate()
        cls.server.wait(20)
        cls.server.stdout.close()
        cls.folder.cleanup()

    def record(self, **values):
        status, made = self.client.call(
            "post_classes_name_records", {"values": values}, name="clsArticulos")
        self.assertEqual(status, 201, made)
        return made

    def test_nobody_is_refused_and_told_why(self):
        for headers in ({}, {"Authorization": "Bearer tvk_forged"}):
            request = urllib.request.Request(self.url + "api/v1/openapi.json", headers=headers)
            with self.assertRaises(urllib.error.HTTPError) as refused:
                urllib.request.urlopen(request, timeout=20)
            answer = json.load(refused.exception)
            self.assertEqual((refused.exception.code, answer["error"]["kind"]), (401, "signedOut"))

    def test_reads_back_what_it_wrote_and_meets_a_conflict(self):
        made = self.record(**{"Código": "TE", "Descripción": "Té verde «100 g»", "Tarifa_A": 3.25})
        status, page = self.client.call("get_articles_code", code="TE")
        self.assertEqual(status, 200)
        self.assertEqual(page["article"]["Descripcion"], "Té verde «100 g»")
        self.assertEqual(page["tariffs"][0]["price"], 3.25)

        def change(original, price):
            return self.client.call(
                "patch_classes_name_record",
                {"key": made["key"], "original": original, "values": {"Tarifa_A": price}},
                name="clsArticulos")

        self.assertEqual(change(made["values"], 3.5)[0], 200)
        status, conflict = change(made["values"], 4)
        self.assertEqual((status, conflict["theirs"]["Tarifa_A"]), (409, 3.5))
        self.assertEqual(change(conflict["theirs"], 4)[0], 200)

    def test_lists_by_column(self):
        for code in ("Z1", "Z2", "Z3"):
            self.record(**{"Código": code, "Descripción": "De la lista " + code})
        status, rows = self.client.call(
            "get_classes_name_rows", name="clsArticulos", order="Código:desc", limit=2,
            filter=["Descripción:like:lista", "Código:ge:Z"])
        self.assertEqual(status, 200, rows)
        self.assertEqual((rows["total"], [row[0] for row in rows["rows"]]), (3, ["Z3", "Z2"]))

    def test_each_column_that_the_description_tells_is_one_of_the_class(self):
        told = self.client.description["components"]["schemas"]["ClsBancos"]["properties"]
        columns = self.client.call("get_classes_name", name="ClsBancos")[1]["columns"]
        self.assertEqual(len(columns), len(told))

    def test_a_sale_is_there_once(self):
        if "post_sales" not in self.client.operations:
            self.skipTest("this server sells nothing")
        session = self.client.call("get_session")[1]
        sale = {"key": "client-1", "till": session["tills"][0]["code"], "delivered": 5,
                "payment": next(each["code"] for each in session["payments"] if each["isCash"]),
                "lines": [{"code": "PAN", "description": "Barra", "quantity": 3, "price": 1.1,
                           "tax": 10}]}
        status, sold = self.client.call("post_sales", sale)
        self.assertEqual(status, 201, sold)
        status, again = self.client.call("post_sales", sale)
        self.assertEqual((status, again["ticket"]), (200, sold["ticket"]), again)
        sale["lines"][0]["quantity"] = 4
        self.assertEqual(self.client.call("post_sales", sale)[0], 409)
        status, rows = self.client.call(
            "get_classes_name_rows", name="ClsTickets", filter=f"Ticket:eq:{sold['ticket']}")
        self.assertEqual((status, rows["total"]), (200, 1))


if __name__ == "__main__":
    unittest.main()
