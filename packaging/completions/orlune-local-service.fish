complete -c orlune-local-service -f
complete -c orlune-local-service -l port -x -d 'Listen on this port'
complete -c orlune-local-service -l model -x -a '(__fish_complete_directories)' -d 'Use another speech model'
complete -c orlune-local-service -l script -r -F -d 'Play a script instead of recognising'
complete -c orlune-local-service -l tls-certificate -r -F -d 'Serve TLS with this certificate chain'
complete -c orlune-local-service -l tls-key -r -F -d 'The private key of the certificate'
complete -c orlune-local-service -l require-key-file -r -F -d 'Accept only the key in this file'
complete -c orlune-local-service -l exit-with-parent -d 'End when standard input ends'
complete -c orlune-local-service -l help -d 'List the options'
