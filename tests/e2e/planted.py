"""The sites of a home whose every trace can be recognized, and the markers that they leave.

A marker is "qz", a kind of four characters and the word of a site: "qzckvlalder" is a cookie's value of
`alder`. A host carries one too, www.qzhostalder.test, so an address holds the marker of the kind "host"
beside its own. No word lies inside another.

| kinds | what leaves them |
|---|---|
| host titl path quer push stat late | addresses, titles and states of pages |
| form fldn done mail typd inpu srch | what was typed: into forms, and at the address bar |
| cknm ckvl ckdn ckdv sckn sckv jckn jckv bckn bckv | cookies: of a response, of a domain, of a session, of a script, of a redirect |
| 3ckn 3ckv pckn pckv plsk plsv pidb pidv | what a frame of another site stores: cookies, partitioned ones, storage |
| lsky lsvl lsbg lsbv ls2k ls2v lsgn lsgo ssky ssvl | local and session storage; `lsgn` was removed by its page |
| idbn idbs idbk idbv idbg idbb | IndexedDB: names, keys, values and a blob |
| capn capu capp capr capb opfn opfs swsc noti notb sync | cache storage, private files, service workers, notifications |
| reso jscr jsbo csbo imgu icou icon body etag dict diid bigb | the HTTP cache, icons, dictionaries |
| down dcon | downloads |
| repo rend | reporting |
| open clos | tabs |
| hsts hmd5 thmb | the host as SHA-256 of its labels, and as MD5; a typed address as MD5 |
| bmrk bmru keyw pwus pwpw exls exlv exst exsv exib exiv | what has to stay: bookmarks, passwords, data of an extension |
"""

from __future__ import annotations

from dataclasses import dataclass

KINDS = """host titl path quer push stat late form fldn done mail typd inpu srch
cknm ckvl ckdn ckdv sckn sckv jckn jckv bckn bckv 3ckn 3ckv pckn pckv plsk plsv pidb pidv
lsky lsvl lsbg lsbv ls2k ls2v lsgn lsgo ssky ssvl idbn idbs idbk idbv idbg idbb
capn capu capp capr capb opfn opfs swsc noti notb sync
reso jscr jsbo csbo imgu icou icon body etag dict diid bigb down dcon repo rend open clos hsts hmd5 thmb
bmrk bmru keyw pwus pwpw exls exlv exst exsv exib exiv""".split()


@dataclass(frozen=True)
class Site:
    word: str
    scheme: str
    label: str
    suffix: str

    @property
    def registrable(self) -> str:
        return f"qzhost{self.word}.{self.suffix}"

    @property
    def host(self) -> str:
        return f"{self.label}.{self.registrable}"

    @property
    def origin(self) -> str:
        return f"{self.scheme}://{self.host}"

    @property
    def bookmark(self) -> str:
        return f"{self.origin}/qzpath{self.word}/0?q=qzquer{self.word}"

    def marker(self, kind: str) -> str:
        return f"qz{kind}{self.word}"


# The one that tests forget, the one that they keep, one that is embedded in both and visited too, and one
# without TLS that is bookmarked and is a search engine. The two first have everything in every profile.
GONE = Site("alder", "https", "www", "test")
KEPT = Site("birch", "https", "app", "co.uk")
FRAME = Site("cedar", "https", "cdn", "test")
MARKED = Site("damson", "http", "books", "com.au")
SITES = (GONE, KEPT, FRAME, MARKED)
BY_HOST = {site.host: site for site in SITES}
BY_WORD = {site.word: site for site in SITES}


def word_of(marker: str) -> str:
    return marker[6:]


def kind_of(marker: str) -> str:
    return marker[2:6]
