#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""make_mdb.py FILE [OPTION...] ARGUMENT...: writes a database file of Jet 4, or of Jet 3.

An argument of "Name(column type, ...)" begins a table, one of "Child.column -> Parent.column" is a
relation that the file keeps ("-/>" one that it only shows), any other a row of the table before it,
its values between "|". "~" is Null, "@FILE" what a file holds, "*N:x" N times x.

Types: flag, byte, int, long, money, single, double, date (a day number), text(n), memo, ole,
binary(n), guid, decimal(p.s). Flags are 1 or 0.

  --jet3            Jet 3, its texts in windows-1252
  --version N       another number of the format's version
  --password TEXT   with a password
  --encoded N       enciphered with that key, as files without a password may be
  --compressed      texts as Jet 4 compresses them
  --rows TABLE=N    what the definition says of its number of rows
  --repeat N        the last row of each table N times, "#" in its texts being 1 to N
  --linked NAME     a table that lies in another file

After the public description of the format in mdbtools' HACKING. It holds what a reader needs: no
indexes, no free space, no forms.
"""
import re
import struct
import sys

TYPES = {'flag': 1, 'byte': 2, 'int': 3, 'long': 4, 'money': 5, 'single': 6, 'double': 7, 'date': 8,
         'binary': 9, 'text': 10, 'ole': 11, 'memo': 12, 'guid': 15, 'decimal': 16}
FIXED = {'flag': 0, 'byte': 1, 'int': 2, 'long': 4, 'money': 8, 'single': 4, 'double': 8, 'date': 8,
         'guid': 16, 'decimal': 17}
INLINE = 64  # bytes of a memo that stay in its row


def rc4(key, data):
    state, j, out = list(range(256)), 0, bytearray()
    for i in range(256):
        j = (j + state[i] + key[i % len(key)]) % 256
        state[i], state[j] = state[j], state[i]
    i = j = 0
    for byte in data:
        i = (i + 1) % 256
        j = (j + state[i]) % 256
        state[i], state[j] = state[j], state[i]
        out.append(byte ^ state[(state[i] + state[j]) % 256])
    return bytes(out)


class Column:
    def __init__(self, text):
        name, kind = text.rsplit(' ', 1)
        match = re.fullmatch(r'(\w+)(?:\(([\d.]+)\))?', kind)
        self.name, self.type, size = name.strip(), match[1], match[2] or ''
        self.precision, self.scale = 18, 0
        if self.type == 'decimal':
            self.precision, self.scale = (int(part) for part in size.split('.'))
        self.size = int(size) if self.type in ('text', 'binary') else FIXED.get(self.type, 0)
        self.fixed = self.type in FIXED


class Table:
    def __init__(self, name, columns, flags=0):
        self.name, self.flags, self.rows = name, flags, []
        self.columns = [Column(text) for text in columns]


class File:
    def __init__(self, jet3, compressed):
        self.jet3, self.compressed = jet3, compressed
        self.page_size = 2048 if jet3 else 4096
        self.head = 10 if jet3 else 14  # of a data page
        self.pages = [b'', b'', b'']  # the definition, the map of all, the catalogue's table

    def add(self, page):
        self.pages.append(page)
        return len(self.pages) - 1

    # Texts

    def text(self, value):
        if self.jet3:
            return value.encode('cp1252')
        plain = value.encode('utf-16-le')
        if self.compressed and value and all(0 < ord(c) < 256 for c in value):
            return b'\xff\xfe' + value.encode('latin-1')
        return plain

    def name(self, value):
        return value.encode('cp1252') if self.jet3 else value.encode('utf-16-le')

    # Pages of rows, which begin at their ends

    def data_pages(self, rows, owner):
        """Numbers of the pages, and where each row lies."""
        pages, places, at = [], [], []
        free = 0
        for row in rows:
            if len(row) + 2 > free or len(at) == 255:
                if at:
                    self.close(pages[-1], at, owner)
                pages.append(self.add(b''))
                at, free = [], self.page_size - self.head
            places.append((pages[-1], len(at)))
            at.append(row)
            free -= len(row) + 2
        if at:
            self.close(pages[-1], at, owner)
        return pages, places

    def close(self, number, rows, owner):
        offsets, body, end = b'', b'', self.page_size
        for row in rows:
            end -= len(row)
            offsets += struct.pack('<H', end)
            body = row + body
        owner = owner if isinstance(owner, bytes) else struct.pack('<I', owner)
        free = end - self.head - len(offsets)
        head = b'\x01\x01' + struct.pack('<H', free) + owner + (b'' if self.jet3 else bytes(4))
        head += struct.pack('<H', len(rows)) + offsets
        self.pages[number] = head + bytes(self.page_size - len(head) - len(body)) + body

    def usage_map(self, pages):
        """A row that names the pages of a table."""
        if not pages or max(pages) - min(pages) < 512:
            first, bits = (min(pages) if pages else 0), bytearray(64)
            for page in pages:
                bits[(page - first) // 8] |= 1 << (page - first) % 8
            return b'\0' + struct.pack('<I', first) + bytes(bits)
        held, maps = (self.page_size - 4) * 8, {}
        for page in pages:
            bits = maps.setdefault(page // held, bytearray(self.page_size - 4))
            bits[page % held // 8] |= 1 << page % 8
        numbers = [self.add(b'\x05\x01\0\0' + bytes(maps[i])) if i in maps else 0
                   for i in range(17)]
        return b'\x01' + b''.join(struct.pack('<I', number) for number in numbers)

    # Values

    def long_value(self, data):
        if len(data) <= INLINE:
            return struct.pack('<II4x', len(data) | 0x80000000, 0) + data
        room = self.page_size - self.head - 2 - 4
        if len(data) <= room:
            (page,), _ = self.data_pages([data], b'LVAL')
            return struct.pack('<II4x', len(data) | 0x40000000, page << 8)
        link = 0
        for begin in reversed(range(0, len(data), room)):
            (page,), _ = self.data_pages([struct.pack('<I', link) + data[begin:begin + room]], b'LVAL')
            link = page << 8
        return struct.pack('<II4x', len(data), link)

    def value(self, column, text):
        kind = column.type
        if kind in ('text', 'memo', 'ole', 'binary'):
            if text.startswith('@'):
                with open(text[1:], 'rb') as file:
                    data = file.read()
                data = data if kind in ('ole', 'binary') else self.text(data.decode())
            else:
                repeated = re.fullmatch(r'\*(\d+):(.*)', text, re.DOTALL)
                text = repeated[2] * int(repeated[1]) if repeated else text
                data = self.text(text) if kind in ('text', 'memo') else text.encode()
            return self.long_value(data) if kind in ('memo', 'ole') else data
        if kind == 'money':
            whole, _, part = text.partition('.')
            units = int(whole + (part + '0000')[:4])
            return struct.pack('<q', units)
        if kind == 'guid':
            parts = text.strip('{}').split('-')
            return (struct.pack('<IHH', *(int(part, 16) for part in parts[:3])) +
                    bytes.fromhex(parts[3] + parts[4]))
        if kind == 'decimal':
            digits = text.lstrip('-').partition('.')
            units = int(digits[0] + (digits[2] + '0' * column.scale)[:column.scale])
            words = [units >> shift & 0xFFFFFFFF for shift in (96, 64, 32, 0)]
            return (b'\x80' if text.startswith('-') else b'\0') + struct.pack('<4I', *words)
        form = {'byte': '<B', 'int': '<h', 'long': '<i', 'single': '<f', 'double': '<d', 'date': '<d'}[kind]
        return struct.pack(form, (float if form[1] in 'fd' else int)(text))

    def row(self, table, values):
        columns = table.columns
        if len(values) != len(columns):
            sys.exit(f'{table.name}: {len(values)} values for {len(columns)} columns: {values}')
        fixed, variable, offsets, nulls = b'', b'', [], 0
        base = 1 if self.jet3 else 2
        for place, (column, text) in enumerate(zip(columns, values)):
            is_null = text == '~'
            if not is_null and not (column.type == 'flag' and text == '0'):
                nulls |= 1 << place
            if column.fixed and column.type != 'flag':
                fixed += bytes(column.size) if is_null else self.value(column, text)
        for column, text in zip(columns, values):
            if not column.fixed:
                offsets.append(len(variable))
                variable += b'' if text == '~' else self.value(column, text)
        row = fixed + variable
        offsets.append(len(variable))
        offsets = [base + len(fixed) + offset for offset in offsets]
        mask = nulls.to_bytes((len(columns) + 7) // 8, 'little')
        count = len(offsets) - 1
        if self.jet3:
            row = bytes([len(columns)]) + row
            if count:
                row += bytes(offset % 256 for offset in reversed(offsets))
                # Where offsets pass 256, and 512 and so on.
                size = len(row) + 1 + len(mask)
                jumps = (size - 1) // 256
                size += jumps
                jumps = (size - 1) // 256
                table_of = [next((i for i, o in enumerate(offsets) if o >= 256 * (n + 1)), 255) for n in range(jumps)]
                row += bytes(reversed(table_of)) + bytes([count])
        else:
            row = struct.pack('<H', len(columns)) + row
            if count:
                row += b''.join(struct.pack('<H', offset) for offset in reversed(offsets))
                row += struct.pack('<H', count)
        return row + mask

    # Tables

    def definition(self, table, number, rows, map_page):
        variable = [column for column in table.columns if not column.fixed]
        kind = b'\x53' if table.flags else b'\x4e'
        counts = struct.pack('<HHHII', len(table.columns), len(variable), len(table.columns), 0, 0)
        maps = struct.pack('<II', map_page << 8, map_page << 8 | 1)
        if self.jet3:
            body = struct.pack('<II', rows, 0) + kind + counts + maps
        else:
            body = struct.pack('<III', 1625, rows, 0) + b'\x01' + bytes(15) + kind + counts + maps
        fixed_at = variable_at = 0
        for place, column in enumerate(table.columns):
            code, flags = TYPES[column.type], 0x03 if column.fixed else 0x02
            size = column.size * (1 if self.jet3 or column.type != 'text' else 2)
            misc = struct.pack('<BB', column.precision, column.scale) if column.type == 'decimal' else b'\x09\x04'
            if self.jet3:
                misc2 = misc if column.type == 'decimal' else b'\xe4\x04'
                body += struct.pack('<BHHHH', code, place, variable_at, place, 0x409) + misc2 + bytes(2)
                body += struct.pack('<BHH', flags, fixed_at, size)
            else:
                body += struct.pack('<BIHHH', code, 1625, place, variable_at, place) + misc + bytes(2)
                body += struct.pack('<BB4xHH', flags, 1 if column.type in ('text', 'memo') else 0, fixed_at, size)
            if column.fixed:
                fixed_at += column.size
            else:
                variable_at += 1
        for column in table.columns:
            name = self.name(column.name)
            body += (struct.pack('<B', len(name)) if self.jet3 else struct.pack('<H', len(name))) + name
        body += b'\xff\xff'
        body = struct.pack('<I', len(body)) + body
        room = self.page_size - 8
        parts = [body[i:i + room] for i in range(0, len(body), room)]
        numbers = [number] + [self.add(b'') for _ in parts[1:]] + [0]
        for part, own, behind in zip(parts, numbers, numbers[1:]):
            free = struct.pack('<H', room - len(part)) if not self.jet3 else b'VC'
            page = b'\x02\x01' + free + struct.pack('<I', behind) + part
            self.pages[own] = page + bytes(self.page_size - len(page))

    def store(self, table, number, rows_told):
        rows = [self.row(table, values) for values in table.rows]
        pages, _ = self.data_pages(rows, number)
        (map_page,), _ = self.data_pages([self.usage_map(pages), self.usage_map([])], number)
        self.definition(table, number, len(rows) if rows_told is None else rows_told, map_page)

    def first_page(self, version, password, key):
        page = bytearray(self.page_size)
        page[0:4] = b'\0\x01\0\0'
        page[4:20] = b'Standard Jet DB\0' if version < 2 else b'Standard ACE DB\0'
        page[0x14] = version
        page[0x3a:0x3e] = struct.pack('<HH', 0x409 if self.jet3 else 0, 1252)
        page[0x3e:0x42] = struct.pack('<I', key)
        created = 36526.5
        if not self.jet3:
            page[0x6e:0x72] = struct.pack('<I', 0x409)
            page[0x72:0x7a] = struct.pack('<d', created)
        secret = password.encode('cp1252' if self.jet3 else 'utf-16-le').ljust(20 if self.jet3 else 40, b'\0')
        mask = bytes(4) if self.jet3 else struct.pack('<i', int(created))
        page[0x42:0x42 + len(secret)] = bytes(b ^ mask[i % 4] for i, b in enumerate(secret))
        length = 126 if self.jet3 else 128
        page[0x18:0x18 + length] = rc4(b'\xc7\xda\x39\x6b', page[0x18:0x18 + length])
        self.pages[0] = bytes(page)


def main(arguments):
    path, tables, relations, linked, told = arguments[0], [], [], [], {}
    jet3 = compressed = False
    version, password, repeat, key = None, '', 0, 0
    rest = iter(arguments[1:])
    for argument in rest:
        relation = re.fullmatch(r'(\w+)\.(\w+(?:,\w+)*) (->|-/>) (\w+)\.(\w+(?:,\w+)*)', argument)
        table = re.fullmatch(r'([^|(]+)\(((?:[^|]+ \w+(?:\([\d.]+\))?)(?:, ?.*)?)\)', argument)
        if argument == '--jet3':
            jet3 = True
        elif argument == '--compressed':
            compressed = True
        elif argument == '--version':
            version = int(next(rest))
        elif argument == '--password':
            password = next(rest)
        elif argument == '--encoded':
            key = int(next(rest))
        elif argument == '--repeat':
            repeat = int(next(rest))
        elif argument == '--linked':
            linked.append(next(rest))
        elif argument == '--rows':
            name, _, count = next(rest).rpartition('=')
            told[name] = int(count)
        elif relation:
            relations.append(relation.groups())
        elif table and not (tables and '|' in argument):
            tables.append(Table(table[1].strip(), re.split(r',\s*', table[2])))
        else:
            tables[-1].rows.append(argument.split('|'))
    if repeat:
        for table in tables:
            last = table.rows.pop()
            table.rows += [[text.replace('#', str(i)) for text in last] for i in range(1, repeat + 1)]

    kept = Table('MSysRelationships', ['ccolumn long', 'grbit long', 'icolumn long', 'szColumn text(64)',
                                       'szObject text(64)', 'szReferencedColumn text(64)',
                                       'szReferencedObject text(64)', 'szRelationship text(64)'], 0x80000002)
    for child, columns, arrow, parent, parents in relations:
        pairs = list(zip(columns.split(','), parents.split(',')))
        for i, (column, other) in enumerate(pairs):
            kept.rows.append([str(len(pairs)), '0' if arrow == '->' else '2', str(i), column, child, other,
                              parent, parent + child])
    catalogue = Table('MSysObjects', ['Id long', 'ParentId long', 'Name text(64)', 'Type int', 'Flags long',
                                      'LvProp ole'], 0x80000002)
    file = File(jet3, compressed)
    for table in [kept] + tables:
        number = file.add(b'')
        flags = struct.unpack('<i', struct.pack('<I', table.flags))[0]
        catalogue.rows.append([str(number), '0', table.name, '1', str(flags), '~'])
        file.store(table, number, told.get(table.name))
    for name in linked:
        catalogue.rows.append(['-1', '0', name, '6', '0', '~'])
    file.store(catalogue, 2, None)
    file.pages[1] = b'\x01\x01' + bytes(file.page_size - 2)
    file.first_page(version if version is not None else (0 if jet3 else 1), password, key)
    if key:
        file.pages[1:] = [rc4(struct.pack('<I', key ^ number), page)
                          for number, page in enumerate(file.pages[1:], 1)]
    with open(path, 'wb') as out:
        out.write(b''.join(file.pages))


if __name__ == '__main__':
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(sys.argv[1:])
