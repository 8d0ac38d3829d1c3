#!/usr/bin/env bash
# The documentation's timing diagrams are those that the workbench draws.
# usage: pictures_test.sh SOURCE PROGRAM
. "$(dirname "${BASH_SOURCE[0]}")/checks.sh"

source=$1 program=$2
run "$source/scripts/make-pictures.sh" "$program" "$folder/pictures"
expect_status 0
for picture in "$source"/docs/pictures/*.svg "$folder"/pictures/*.svg; do
    name=$(basename "$picture")
    run cmp "$source/docs/pictures/$name" "$folder/pictures/$name"
    expect_status 0
    grep -q -r -F "pictures/$name" "$source/docs" "$source/README.md" ||
        failed "$name is not shown in any document"
done
finish
