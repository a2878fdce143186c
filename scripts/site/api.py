# SPDX-License-Identifier: BSD-3-Clause
"""The reference of the public headers: Doxygen's XML as pages, one a header, in the order of the header."""
import html
import os
import re
import xml.etree.ElementTree as ElementTree

SAME, PLAIN, REMARK, NOTE = '\x01', '\x02', '\x03', '\x04'
SIGNS = {'vorto-same': SAME, 'vorto-plain': PLAIN, 'vorto-remark': REMARK, 'vorto-note': NOTE}
TAGS = {'computeroutput': 'code', 'emphasis': 'em', 'bold': 'strong', 'itemizedlist': 'ul', 'orderedlist': 'ol', 'listitem': 'li'}
CHARACTERS = {'ndash': '\u2013', 'mdash': '\u2014', 'nonbreakablespace': '\u00a0', 'linebreak': '<br>', 'sp': ' '}


class Header:
    """One public header. `path` is what an #include of it says."""

    def __init__(self, path, room):
        self.path, self.room = path, room
        self.url = 'api/' + path[:-2] + '.html'
        self.summary = ''
        self.contents = []


class Reference:
    def __init__(self, xml, headers):
        """`headers` are (room, path); `xml` is Doxygen's folder."""
        self.headers = {path: Header(path, room) for room, path in headers}
        self.places = {}    # Doxygen's names of things: url and anchor
        self.names = {}     # code as people write it: url; None where it is not clear what is meant
        self.entries = []   # name, what it is of, kind, url, words
        self.files, self.classes = {}, {}
        for compound in ElementTree.parse(f'{xml}/index.xml').getroot():
            if compound.get('kind') in ('file', 'class', 'struct', 'union', 'namespace'):
                self._read(ElementTree.parse(f'{xml}/{compound.get("refid")}.xml').getroot().find('compounddef'))
        self._place()

    def _read(self, compound):
        location = compound.find('location')
        if location is None or location.get('file') not in self.headers:
            return
        if compound.get('kind') == 'file':
            self.files[location.get('file')] = compound
        elif compound.get('prot', 'public') != 'private' and compound.get('kind') != 'namespace':
            self.classes.setdefault(location.get('file'), []).append(compound)

    def _place(self):
        for path, header in self.headers.items():
            used = set()
            self._name(path, header.url)
            self.places[self.files[path].get('id')] = header.url
            for compound in self.classes_of(path):
                name = compound.findtext('compoundname')
                self._put(header, compound.get('id'), name, used, '', 'class')
                for member in members(compound):
                    overrides = 'override' in (member.findtext('argsstring') or '')
                    self._put(header, member.get('id'), f'{name}::{member.findtext("name")}', used, name, 'function', overrides)
                    self._put_enumerators(header, member, used, name)
            for member in members(self.files[path]):
                self._put(header, member.get('id'), member.findtext('name'), used, '', 'function')
                self._put_enumerators(header, member, used, '')

    def _put_enumerators(self, header, member, used, owner):
        for value in member.findall('enumvalue'):
            name = value.findtext('name')
            self._put(header, value.get('id'), f'{owner}::{name}' if owner else name, used, owner, 'value')

    def _put(self, header, identifier, name, used, owner, kind, overrides=False):
        anchor = base = re.sub(r'[^\w~]+', '-', name).strip('-')
        number = 1
        while anchor in used:
            number += 1
            anchor = f'{base}-{number}'
        used.add(anchor)
        url = f'{header.url}#{anchor}'
        self.places[identifier] = url
        short = name.split('::')[-1]
        if kind == 'function' and short == owner.split('::')[-1]:
            return  # a constructor is found with its class
        for written in [name, f'{name}()'] + ([] if overrides else [short, f'{short}()']):
            self._name(written, url)
        if number == 1 and not overrides and not short.startswith(('~', '@', 'operator')):
            self.entries.append((short, owner or header.path, kind, url, identifier))

    def _name(self, written, url):
        known = self.names.get(written, url)
        base = re.sub(r'-\d+$', '', url)
        self.names[written] = known if known is not None and re.sub(r'-\d+$', '', known) == base else None

    def classes_of(self, path):
        return sorted(self.classes.get(path, []), key=line_of)

    def url_of(self, written):
        """The place of a name, a header or a call as people write it between backticks, or None. Words that anything
        could be called, as `red`, are none."""
        return self.names.get(written) if re.search(r'[:/]|[a-z][A-Z]|^[A-Z]{2}', written) else None

    # Texts

    def text(self, node, root):
        """A description as HTML, with signs where the filter put them."""
        out = [html.escape(node.text or '', quote=False)]
        for child in node:
            out.append(self.element(child, root))
            out.append(html.escape(child.tail or '', quote=False))
        return ''.join(out)

    def element(self, child, root):
        tag = child.tag
        if tag in SIGNS:
            return SIGNS[tag]
        if tag in CHARACTERS:
            return CHARACTERS[tag]
        inner = self.text(child, root)
        if tag == 'ref':
            url = self.places.get(child.get('refid'))
            return f'<a href="{root}{url}">{inner}</a>' if url else inner
        if tag == 'ulink':
            return f'<a href="{html.escape(child.get("url"))}">{inner}</a>'
        if tag == 'para':
            return paragraphs(inner)
        if tag in TAGS:
            return f'<{TAGS[tag]}>{inner}</{TAGS[tag]}>'
        raise SystemExit(f'site: Doxygen writes a {tag}, which nobody knows here')

    def description(self, node, root):
        text = ''.join(self.text(part, root) for part in (node.find('briefdescription'), node.find('detaileddescription'))
                       if part is not None)
        return Description(text)

    # Declarations

    def linked(self, node, root):
        if node is None:
            return ''
        text = re.sub(r'\s+', ' ', self.text(node, root)).strip()
        text = re.sub(r' ([*]|&amp;)', r'\1', text)  # pointers and references stand with the type
        return text.replace('&lt; ', '&lt;').replace(' &gt;', '&gt;')

    def declaration(self, member, root):
        name = html.escape(member.findtext('name'), quote=False)
        anchor = self.places[member.get('id')].partition('#')[2]
        self_name = f'<span class="self" id="{anchor}">{name}</span>'
        template = self.template(member, root)
        kind = member.get('kind')
        if kind == 'function':
            return template + self.function(member, self_name, root)
        kinds = self.linked(member.find('type'), root)
        if kind == 'typedef':
            return f'{template}using {self_name} = {kinds}{html.escape(member.findtext("argsstring") or "", quote=False)};'
        if kind == 'define':
            parameters = ', '.join(p.findtext('defname') or '' for p in member.findall('param'))
            return f'#define {self_name}' + (f'({parameters})' if parameters else '')
        start = self.linked(member.find('initializer'), root)
        start = f' {start}' if start.startswith('=') and len(start) < 60 else ''
        static = 'static ' if member.get('static') == 'yes' and not kinds.startswith('static') else ''
        return f'{static}{kinds} {self_name}{html.escape(member.findtext("argsstring") or "", quote=False)}{start};'

    def template(self, node, root):
        if node.find('templateparamlist') is None:
            return ''
        parameters = []
        for parameter in node.find('templateparamlist'):
            name = parameter.findtext('declname')
            parameters.append(self.linked(parameter.find('type'), root) + (f' {name}' if name else ''))
        return f'template &lt;{", ".join(parameters)}&gt; '

    def function(self, member, self_name, root):
        parameters = []
        for parameter in member.findall('param'):
            kinds = self.linked(parameter.find('type'), root)
            name = parameter.findtext('declname') or ''
            array = html.escape(parameter.findtext('array') or '', quote=False)
            start = self.linked(parameter.find('defval'), root)
            joined = f'{kinds} {name}'.strip() if not kinds.endswith('(*') else f'{kinds}{name}'
            parameters.append(joined + array + (f' = {start}' if start else ''))
        arguments = member.findtext('argsstring') or ''
        tail = html.escape(arguments[arguments.rfind(')') + 1:], quote=False)
        tail = re.sub(r'\s*=\s*(0|default|delete)', r' = \1', tail)
        if parameters and '...' in arguments:
            parameters = [p for p in parameters if p != '...'] + ['...']
        kinds = re.sub(r'^(inline|virtual) ', '', self.linked(member.find('type'), root))
        before = 'static ' if member.get('static') == 'yes' else ''
        if member.get('virt') in ('virtual', 'pure-virtual') and 'override' not in tail:
            before += 'virtual '
        if member.get('explicit') == 'yes':
            before += 'explicit '
        return f'{before}{kinds}{" " if kinds else ""}{self_name}({", ".join(parameters)}){tail};'

    def enumeration(self, member, root):
        head = 'enum class' if member.get('strong') == 'yes' else 'enum'
        name = member.findtext('name')
        anchor = self.places[member.get('id')].partition('#')[2]
        kinds = self.linked(member.find('type'), root)
        name = '' if name.startswith('@') else name
        lines = [f'{head} <span class="self" id="{anchor}">{name}</span>' + (f' : {kinds}' if kinds else '') + ' {']
        for value in member.findall('enumvalue'):
            anchor = self.places[value.get('id')].partition('#')[2]
            description = self.description(value, root)
            start = self.linked(value.find('initializer'), root)
            lines.append(f'  <span id="{anchor}">{value.findtext("name")}</span>' + (f' {start}' if start else '') + ','
                         + note(description.note or strip_tags(description.prose)))
        return lines + ['};']

    # Pages

    def page(self, header):
        root = '../' * header.url.count('/')
        out = [f'<h1>{os.path.basename(header.path)}</h1>',
               f'<p class="include"><code>#include "{header.path}"</code></p>']
        file = self.files[header.path]
        remark = self.description(file, root).prose
        if remark:
            out.append(remark)
        header.contents = []
        parts = [(line_of(c), 'class', c) for c in self.classes_of(header.path)]
        parts += [(line_of(m), 'member', m) for m in members(file)]
        loose = []
        for _, kind, node in sorted(parts, key=lambda part: part[0]):
            if kind == 'member':
                loose.append(node)
                continue
            out.append(self.blocks(loose, root))
            loose = []
            out.append(self.class_text(node, header, root))
        out.append(self.blocks(loose, root))
        header.summary = self.summary(header, remark)
        return ''.join(out)

    def summary(self, header, remark):
        stem = os.path.basename(header.path)[:-2]
        compounds = self.classes_of(header.path)
        named = [c for c in compounds if c.findtext('compoundname') == stem]
        texts = [remark] + [self.description(node, '').prose
                            for node in named + [c for c in compounds if c.get('kind') == 'class'] + members(self.files[header.path]) + compounds]
        text = next((text for text in texts if text), '')
        return first_sentence(text)

    def class_text(self, compound, header, root):
        name = compound.findtext('compoundname')
        anchor = self.places[compound.get('id')].partition('#')[2]
        header.contents.append((2, name, anchor))
        out = [f'<h2 class="name" id="{anchor}">{self.template(compound, root)}{compound.get("kind")} {html.escape(name)}'
               f'<a class="anchor" href="#{anchor}" aria-label="Link to this part">#</a></h2>']
        for word, tag in (('Inherits', 'basecompoundref'), ('Inherited by', 'derivedcompoundref')):
            links = [self.class_link(ref, root) for ref in compound.findall(tag)]
            if links:
                out.append(f'<p class="bases">{word} {", ".join(links)}</p>')
        out.append(self.description(compound, root).prose)
        for protection, title in (('public', ''), ('protected', 'For subclasses')):
            nodes = [m for m in members(compound) if m.get('prot') == protection]
            if nodes and title:
                out.append(f'<h3>{title}</h3>')
            out.append(self.blocks(nodes, root))
        return ''.join(out)

    def class_link(self, reference, root):
        name = html.escape(reference.text)
        url = self.places.get(reference.get('refid'))
        return f'<a href="{root}{url}"><code>{name}</code></a>' if url else f'<code>{name}</code>'

    def blocks(self, nodes, root):
        """Declarations with their text; those that share a text, or have none, stand together."""
        out, current = [], None
        for node in nodes:
            description = self.description(node, root)
            if description.remark:
                out.append(current.html() if current else '')
                out.append(f'<div class="remark">{description.remark}</div>')
                current = None
            joins = current and (description.same or (not description.prose and not current.prose))
            if not joins:
                out.append(current.html() if current else '')
                current = Block(description.prose)
            if node.get('kind') == 'enum':
                current.lines += self.enumeration(node, root)
            else:
                current.lines.append(self.declaration(node, root) + note(description.note))
        out.append(current.html() if current else '')
        return ''.join(out)

    def search_entries(self):
        texts = {}
        for path in self.headers:
            for compound in self.classes_of(path):
                texts[compound.get('id')] = self.description(compound, '').words()
                for member in members(compound):
                    texts[member.get('id')] = self.description(member, '').words()
            for member in members(self.files[path]):
                texts[member.get('id')] = self.description(member, '').words()
        for name, owner, kind, url, identifier in self.entries:
            yield {'t': name, 'p': owner, 'u': url, 'x': texts.get(identifier, '')[:200], 'k': kind}


class Description:
    """What a comment says, taken apart: a remark before it, the text, the note behind the declaration."""

    def __init__(self, text):
        self.same = SAME in text
        text = text.replace(SAME, '').replace(PLAIN, '')
        self.remark, text = split_tags(text, REMARK)
        self.note = ''
        if NOTE in text:
            notes = re.findall(NOTE + r'(.*?)(?:</p>|$|(?=' + NOTE + '))', text, re.DOTALL)
            self.note = ' '.join(' '.join(notes).split())
            text = re.sub(NOTE + r'.*?(?=</p>|$)', '', text, flags=re.DOTALL)
        self.prose = re.sub(r'<p>\s*</p>', '', text).strip()

    def words(self):
        return re.sub(r'\s+', ' ', strip_tags(f'{self.prose} {self.note}')).strip()


class Block:
    def __init__(self, prose):
        self.prose, self.lines = prose, []

    def html(self):
        lines = ''.join(f'<span class="declaration">{line}</span>' for line in self.lines)
        return f'<div class="member"><figure class="code cpp"><pre><code>{lines}</code></pre></figure>{self.prose}</div>'


def split_tags(text, sign):
    before, found, after = text.rpartition(sign)
    if not found:
        return '', text
    return before.replace(sign, '') + '</p>', '<p>' + after


def paragraphs(inner):
    """A paragraph, with lists standing beside its text and not in it."""
    parts = re.split(r'(<(?:ul|ol)>.*</(?:ul|ol)>)', inner, flags=re.DOTALL)
    return ''.join(part if i % 2 else f'<p>{part.strip()}</p>' if part.strip() else '' for i, part in enumerate(parts))


def note(text):
    return f' <span class="note">// {text}</span>' if text else ''


def strip_tags(text):
    return html.unescape(re.sub(r'<[^>]*>', ' ' if '</p>' in text else '', text)).strip()


def first_sentence(text):
    plain = re.sub(r'\s+', ' ', html.unescape(re.sub(r'<[^>]*>', '', text.split('</p>')[0]))).strip()
    return re.split(r'(?<=[.:]) (?=[A-Z])', plain)[0]


def line_of(node):
    return int(node.find('location').get('line'))


def members(compound):
    found = []
    for section in compound.findall('sectiondef'):
        if section.get('kind').startswith(('private', 'friend')):
            continue
        for member in section.findall('memberdef'):
            if member.findtext('name').startswith('~'):
                continue
            if member.get('kind') in ('function', 'variable', 'typedef', 'enum', 'define') and member.get('prot') != 'private':
                found.append(member)
    return sorted(found, key=lambda m: (line_of(m), int(m.find('location').get('column') or 0)))
