# Completion of browsersweep for fish.
# The words here are checked against the program's own parser by the tests.

set -l commands browsers profiles size clean sites forget bookmarks notifications doctor
set -l browsers quenbySecureBrowser tarrowSecureBrowser brave chromium firefox googleChrome \
    microsoftEdge orvo brellisPrivateBrowser opera safari vivaldi yandexBrowser
set -l categories cache history httpCookies flashCookies formData localStorage
set -l kinds history downloads icons cookies siteStorage serviceWorkers cachedFiles openTabs \
    formData settings networkState predictions

# Before the command is typed, the options of all commands are offered.
set -l no_command "not __fish_seen_subcommand_from $commands help"
set -l asking "__fish_seen_subcommand_from help; and not __fish_seen_subcommand_from $commands"
set -l selecting "not __fish_seen_subcommand_from help"
set -l listing browsers profiles bookmarks notifications doctor help
set -l measuring "not __fish_seen_subcommand_from $listing sites forget"
set -l showing "not __fish_seen_subcommand_from $listing clean forget"
set -l cleaning "not __fish_seen_subcommand_from $listing size sites"
set -l deleting "not __fish_seen_subcommand_from $listing size sites forget"
set -l tracing "not __fish_seen_subcommand_from $listing size clean"
set -l sorting "not __fish_seen_subcommand_from $listing forget"
set -l choosing "not __fish_seen_subcommand_from $listing clean sites"
set -l surveying "not __fish_seen_subcommand_from $listing size clean forget"
set -l forgetting "not __fish_seen_subcommand_from $listing size clean sites"

complete -c browsersweep -f
complete -c browsersweep -n $no_command -a browsers -d 'List the thirteen browsers'
complete -c browsersweep -n $no_command -a profiles -d 'List the profiles of the selected browsers'
complete -c browsersweep -n $no_command -a size -d 'Measure the selected data'
complete -c browsersweep -n $no_command -a clean -d 'Delete the selected data'
complete -c browsersweep -n $no_command -a sites -d 'List what each site left'
complete -c browsersweep -n $no_command -a forget -d 'Remove all that sites left'
complete -c browsersweep -n $no_command -a bookmarks -d 'List bookmarks'
complete -c browsersweep -n $no_command -a notifications -d 'List the sites that may send notifications'
complete -c browsersweep -n $no_command -a doctor -d 'Say which data can be reached'
complete -c browsersweep -n $no_command -a help -d 'Show the help, or that of a command'
complete -c browsersweep -n $asking -a "$commands"

complete -c browsersweep -l home -x -a '(__fish_complete_directories)' -d 'Act on the Library folder under another folder'
complete -c browsersweep -l json -d 'Machine-readable output on standard output'
complete -c browsersweep -n $selecting -s b -l browser -x -a "$browsers" -d 'A browser'
complete -c browsersweep -n $selecting -l profile -x -d 'The profiles of this name or folder'
complete -c browsersweep -n $selecting -l primary-only -d 'Primary profiles only'
complete -c browsersweep -s h -l help -d 'The help'
complete -c browsersweep -l version -d 'The version'

complete -c browsersweep -n $measuring -s c -l category -x -a "$categories" -d 'A category'
complete -c browsersweep -n $measuring -l include -x -d 'Only what contains this text'
complete -c browsersweep -n $measuring -l exclude -x -d 'Only what does not contain this text'
complete -c browsersweep -n $measuring -l inside -x -d 'Only what is dated in the range'
complete -c browsersweep -n $measuring -l outside -x -d 'Only what is dated outside the range'
complete -c browsersweep -n $measuring -l days -x -a 'today yesterday' -d 'Only what is dated on these days'
complete -c browsersweep -n $measuring -l last -x -d 'Only what is dated in the last hours or days'
complete -c browsersweep -n $measuring -l strict -d 'Leave out what the filters cannot see'
complete -c browsersweep -n $measuring -l filter -x -d 'Any filter, in JSON'
complete -c browsersweep -n $measuring -l ignore-errors -d 'Go on after errors'
complete -c browsersweep -n $measuring -l keep-going -d 'Go on with the next item where one fails'
complete -c browsersweep -n $showing -l html -r -F -d 'Also write a page for a web browser'
complete -c browsersweep -n $tracing -l kind -x -a "$kinds" -d 'A kind of traces'
complete -c browsersweep -n $measuring -l by -x -a 'browser category profile' -d 'What a row is about'
complete -c browsersweep -n $sorting -l sort -x -a 'size name items last' -d 'The order of the rows'
complete -c browsersweep -n $surveying -l older-than -x -d 'Only sites not used for this long'
complete -c browsersweep -n $choosing -l all -d 'size: empty rows, too; forget: every site'
complete -c browsersweep -n $forgetting -l keep -x -d 'A site to keep'
complete -c browsersweep -n $forgetting -l keep-list -r -F -d 'A file with the sites to keep'
complete -c browsersweep -n $forgetting -l mixed -d 'Also what is not stored by site'
complete -c browsersweep -n $forgetting -l settings -d 'Also what you decided about the sites'
complete -c browsersweep -n $cleaning -s n -l dry-run -d 'Say what would be removed and delete nothing'
complete -c browsersweep -n $cleaning -l no-config -d 'Ignore the keep list'
complete -c browsersweep -n $deleting -l list -d 'List every file and table that would go'
complete -c browsersweep -n $cleaning -s y -l yes -d 'Do not ask'
complete -c browsersweep -n $cleaning -l force -d 'Go on even if a selected browser seems to be running'
