#!/usr/bin/env bash
# Owns the Debian packages: the programs in a root that holds nothing else, and hosts in three languages on a minimal
# Debian, which is downloaded.
set -euo pipefail

(cd "$SOURCE/build/release" && rm -f ./*.deb && cpack -G DEB >/dev/null)
cp "$SOURCE"/build/release/*.deb .
ls -l ./*.deb

echo '-- the size of the executables'
mkdir empty
dpkg-deb -x zelvo_*.deb empty
check_size() {
  local size
  size=$(stat -c %s "empty/usr/$1")
  echo "$1: $size bytes, at most $2"
  [ "$size" -le "$2" ]
}
check_size libexec/zelvo/zelvo_document_worker 4000000
check_size libexec/zelvo/zelvo_document_cleaner 4000000
check_size bin/zelvo 6000000

echo '-- a root with the package alone'
mkdir files
cp "$SOURCE"/examples/*.xlsx "$SOURCE"/examples/research-* files
in_empty_root() {
  bwrap --unshare-all --die-with-parent --new-session --clearenv --ro-bind empty/usr /usr --proc /proc \
    --bind files /files --remount-ro / --chdir /files /usr/bin/zelvo "$@"
}
book=quarterly-sales.xlsx
in_empty_root doctor
in_empty_root inspect "$book" >/dev/null
in_empty_root extract "$book" --sheet Orders --cached-formulas --csv 2>/dev/null | grep -q '^2024-07-01,SO-1042,'
in_empty_root create "$book" --sheet Quarter --range A1:F5 --cached-formulas --title Quarter -o quarter.pptx >/dev/null
in_empty_root clean "$book" -o cleaned.xlsx >/dev/null
in_empty_root research workbook research-dataset.json --title Dataset -o dataset.xlsx >/dev/null
in_empty_root research presentation research-presentation.json --datasets research-datasets.json -o deck.pptx >/dev/null
in_empty_root batch inspect . --quiet | grep -c '"answered"'

echo '-- hosts on a minimal Debian'
cat >inside <<'END'
#!/bin/sh
set -eux
cd /root
apt-get install -y --no-install-recommends ./zelvo_*.deb ./libzelvo-dev_*.deb >/dev/null
id zelvo 2>/dev/null || echo 'There is no systemd-sysusers, and so no user zelvo.'
doc=/usr/share/doc/zelvo
book=$doc/examples/quarterly-sales.xlsx
zelvo doctor

cmake -S $doc/examples/cpp -B cmake >/dev/null
cmake --build cmake >/dev/null
./cmake/inspect_and_create /usr/libexec/zelvo/zelvo_document_worker "$book" cmake.docx
c++ $doc/examples/cpp/inspect_and_create.cpp -o with_pkg_config $(pkg-config --cflags --libs zelvo-host)
./with_pkg_config /usr/libexec/zelvo/zelvo_document_worker "$book" pkg-config.docx
cmp cmake.docx pkg-config.docx

python3 $doc/examples/python_host.py "$book" python.docx
mkdir node_modules
ln -s /usr/share/nodejs/zelvo node_modules/zelvo # as npm install does with a folder
sed 's#"../hosts/node/zelvo.js"#"zelvo"#' $doc/examples/node_host.mjs >node_host.mjs
node node_host.mjs "$book" node.docx
zelvo validate python.docx
zelvo validate node.docx
apt-get purge -y zelvo libzelvo-dev >/dev/null
test ! -e /usr/libexec/zelvo
END
chmod +x inside
mmdebstrap --quiet --variant=minbase --include=g++,cmake,make,pkg-config,python3,nodejs --format=null \
  --customize-hook="cp $PWD/*.deb $PWD/inside \"\$1/root\"" --customize-hook='chroot "$1" /root/inside' bookworm - 2>&1
