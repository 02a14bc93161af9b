# SPDX-License-Identifier: MIT
"""What lives how long: objects and their shops, memory, threads, processes, interrupts."""

import gc
import os
import signal
import threading
import time
import weakref

import pytest
import tavelor
from conftest import DAY, typed_rows


def test_what_is_used_after_close_raises_and_never_crashes(folder):
    shop = tavelor.open(folder)
    banks, connection = shop.ClsBancos, shop.connection()
    banks.IniciaRs("todos")
    rows = banks.rows()
    iterator = iter(rows)
    first = next(iterator)
    listener = rows.on(lambda event: None)
    shop.close()
    shop.close()
    assert shop.closed and first.Descripción == "Banco de Ahorro" and not rows.is_open
    rows.close()
    for call in (
        lambda: banks.MoveNext(),
        lambda: banks.sClassName,
        lambda: banks.rows(),
        lambda: banks(),
        lambda: len(rows),
        lambda: list(rows),
        lambda: rows.numpy(),
        lambda: rows["Banco"],
        lambda: rows.__arrow_c_stream__(),
        lambda: rows.on(print),
        lambda: rows.row,
        lambda: connection.execute("DELETE FROM Bancos"),
        lambda: connection.begin(),
        lambda: connection.level,
        lambda: shop.query("SELECT * FROM Bancos"),
        lambda: shop.ClsCajas,
        lambda: shop.now(),
        lambda: shop.seed(),
        lambda: shop.sell(reference="x", till="01", day=DAY, lines=[]),
        lambda: shop.transaction().__enter__(),
        lambda: shop.reconcile([]),
        lambda: shop.ticket_text(1),
    ):
        with pytest.raises(tavelor.ClosedError) as caught:
            call()
        assert caught.value.number == 91 and "closed" in caught.value.description
    listener.remove()


def test_children_keep_their_shop(folder):
    rows = tavelor.open(folder).query("SELECT * FROM Bancos")
    gc.collect()
    assert len(rows) == 2 and next(iter(rows)).Banco == "Banco de Ahorro"
    iterator = iter(tavelor.open(folder).query("SELECT * FROM Bancos"))
    gc.collect()
    assert len(list(iterator)) == 2


def test_a_shop_that_nobody_holds_closes_by_itself(folder):
    shop = tavelor.open(folder)
    seen = weakref.ref(shop)
    rows = shop.query("SELECT * FROM Bancos")
    there = weakref.ref(rows)
    del shop, rows
    gc.collect()
    assert seen() is None and there() is None


def test_a_cycle_through_a_handler_is_collected(shop):
    class Holder:
        pass

    holder = Holder()
    rows = shop.query("SELECT * FROM Bancos")
    holder.listener = rows.on(lambda event: holder)
    seen = weakref.ref(holder)
    del holder, rows
    gc.collect()
    assert seen() is None


def resident():
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def growth(work, warm, times):
    """Bytes that the process has grown by, behind its first runs."""
    for _ in range(warm):
        work()
    gc.collect()
    before = resident()
    for _ in range(times):
        work()
    gc.collect()
    return resident() - before


def test_memory_is_given_back(shop):
    rows = typed_rows(shop, 3000)
    banks = shop.ClsBancos
    articles = shop.ClsArticulos

    def refused():
        with pytest.raises(tavelor.Error):
            shop.query("SELECT * FROM Nada")
        with pytest.raises(ValueError):
            articles.GetDatos(float("nan"))

    def heard():
        rows.on(lambda event: None).remove()
        rows.clone().close()

    assert growth(rows.numpy, 5, 20) < 4_000_000
    assert growth(lambda: rows.__arrow_c_stream__(), 5, 20) < 4_000_000
    assert growth(lambda: list(rows), 5, 20) < 4_000_000
    assert growth(lambda: articles.GetDatos("A1"), 500, 20_000) < 1_000_000
    assert growth(lambda: banks(), 500, 5000) < 1_000_000
    assert growth(lambda: shop.query("SELECT * FROM Bancos"), 200, 3000) < 1_000_000
    assert growth(refused, 100, 2000) < 1_000_000
    assert growth(heard, 100, 2000) < 1_000_000


def test_shops_are_given_back(folder):
    def opened():
        with tavelor.open(folder) as shop:
            shop.ClsBancos.IniciaRs("todos")

    assert growth(opened, 5, 30) < 2_000_000
    assert len(os.listdir("/proc/self/fd")) < 60


# ---- Threads


def in_thread(work):
    """What work() gave, or raised, on another thread."""
    outcome = []

    def run():
        try:
            outcome.append(work())
        except BaseException as error:
            outcome.append(error)

    thread = threading.Thread(target=run)
    thread.start()
    thread.join()
    return outcome[0]


def test_another_thread_is_refused_and_opens_its_own(shop):
    banks, rows = shop.ClsBancos, shop.query("SELECT * FROM Bancos")
    for work in (banks.NuevoCodigo, lambda: len(rows), lambda: list(rows), rows.numpy, shop.now):
        error = in_thread(work)
        assert isinstance(error, tavelor.ArgumentError) and "thread" in error.message
    assert len(rows) == 2

    def own():
        with tavelor.open(shop.folder) as mine:
            return len(mine.query("SELECT * FROM Bancos"))

    assert in_thread(own) == 2


def test_what_is_dropped_on_another_thread_goes(shop):
    held = [shop.query("SELECT * FROM Bancos"), shop.ClsBancos()]
    in_thread(held.clear)
    assert len(shop.query("SELECT * FROM Bancos")) == 2


def test_a_statement_lets_other_threads_run(shop):
    with shop.connection().transaction() as connection:
        for i in range(28):
            connection.execute("INSERT INTO Bancos (Codigo, Banco) VALUES (?, ?)", f"{i:04}x", str(i))
    counted = 0
    stop = threading.Event()

    def count():
        nonlocal counted
        while not stop.is_set():
            counted += 1
            time.sleep(0)

    thread = threading.Thread(target=count)
    thread.start()
    try:
        # Long enough for the other one, and one call only.
        before = counted
        shop.query("SELECT Count(*) FROM Bancos a, Bancos b, Bancos c, Bancos d WHERE a.Codigo & b.Codigo = c.Codigo & d.Banco")
        seen = counted - before
    finally:
        stop.set()
        thread.join()
    assert seen > 20


def test_a_shop_is_not_closed_under_a_call(shop):
    rows = typed_rows(shop, 2)
    refusals = []

    def closing(event):
        error = in_thread(shop.close)
        refusals.append(type(error))

    listener = rows.on(closing)
    rows.first()
    listener.remove()
    assert refusals and set(refusals) == {tavelor.NotAllowedError}
    assert len(rows) == 2


def test_many_threads_have_a_shop_each(folder):
    def work(number):
        with tavelor.open(folder) as mine:
            for i in range(20):
                mine.execute("INSERT INTO Bancos (Codigo, Banco) VALUES (?, ?)", f"{number}{i:03}", "x")
                list(mine.query("SELECT * FROM Bancos"))

    errors = []
    threads = [threading.Thread(target=lambda n=n: errors.append(None) or work(n)) for n in range(1, 5)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    with tavelor.open(folder) as shop:
        assert len(shop.query("SELECT * FROM Bancos")) == 82


# ---- Processes


def test_a_forked_copy_is_refused_and_harms_nothing(shop):
    rows = shop.query("SELECT * FROM Bancos")
    reading, writing = os.pipe()
    child = os.fork()
    if child == 0:
        try:
            try:
                len(rows)
            except tavelor.NotAllowedError as error:
                os.write(writing, b"refused: " + str("fork" in error.description).encode())
            shop.close()
            del rows
        finally:
            os._exit(0)
    os.close(writing)
    with os.fdopen(reading, "rb") as answer:
        assert answer.read() == b"refused: True"
    os.waitpid(child, 0)
    assert len(shop.query("SELECT * FROM Bancos")) == 2 and len(rows) == 2


def test_an_interrupt_ends_a_long_read_between_its_blocks(shop):
    rows = typed_rows(shop, 200)
    main = threading.get_ident()
    timer = threading.Timer(0.2, lambda: signal.pthread_kill(main, signal.SIGINT))
    before = time.monotonic()
    timer.start()
    with pytest.raises(KeyboardInterrupt):
        while time.monotonic() - before < 20:
            for _ in rows:
                pass
            rows.numpy()
    timer.join()
    assert len(rows) == 200
